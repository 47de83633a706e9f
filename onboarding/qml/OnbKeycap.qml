// A key of the scripted scene. It lights up while it counts as held.
import QtQuick
import Dormel.Ui

Rectangle {
    id: root

    required property string label
    property bool held: false

    implicitWidth: 58
    implicitHeight: 58
    radius: 16
    color: held ? "white" : AppPalette.fill
    border.width: held ? 0 : 1
    border.color: AppPalette.hairline

    Behavior on color {
        EasedColor { duration: 200 }
    }

    Text {
        anchors.centerIn: parent
        text: root.label
        textFormat: Text.PlainText
        // A sign or a letter; a word is written smaller.
        font: Typeface.at(root.label.length > 1 ? 16 : 20, Font.DemiBold)
        color: root.held ? "black" : Qt.rgba(1, 1, 1, 0.7)
    }
}
