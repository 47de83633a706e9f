// The message that takes the challenge's place once the keys were held long enough.
import QtQuick
import Dormel.Ui

Column {
    id: root

    required property string confirmation
    required property string relockText

    spacing: 14

    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        text: root.confirmation
        font: Typeface.at(44, Font.DemiBold)
        color: "white"
    }
    TabularText {
        anchors.horizontalCenter: parent.horizontalCenter
        visible: root.relockText !== ""
        text: root.relockText
        font: Typeface.at(16, Font.Light)
        color: Qt.rgba(1, 1, 1, 0.50)
        rolls: true
    }
}
