// A fact, and beneath it what it holds for.
import QtQuick
import Dormel.Ui

Column {
    id: root

    required property string text
    required property string qualifier

    spacing: 4

    Accessible.role: Accessible.StaticText
    Accessible.name: text + ", " + qualifier

    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        text: root.text
        textFormat: Text.PlainText
        font: Typeface.spaced(24, Font.Bold, -0.3)
        color: AppPalette.text

        Accessible.ignored: true
    }
    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        text: root.qualifier
        textFormat: Text.PlainText
        font: Typeface.at(15, Font.Normal)
        color: AppPalette.secondary

        Accessible.ignored: true
    }
}
