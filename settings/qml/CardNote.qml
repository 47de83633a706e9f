// Why something of a card cannot be changed now.
import QtQuick
import Dormel.Ui

PlainText {
    width: parent.width
    wrapMode: Text.Wrap
    font: Typeface.at(12, Font.Medium)
    color: AppPalette.warm
    opacity: visible ? 0.9 : 0

    Behavior on opacity {
        NumberAnimation {
            duration: 400
        }
    }
}
