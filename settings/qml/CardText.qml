// A quiet line of words in a card.
import QtQuick
import Dormel.Ui

Text {
    width: parent.width
    wrapMode: Text.Wrap
    font: Typeface.at(13, Font.Normal)
    color: AppPalette.secondary

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
