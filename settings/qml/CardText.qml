// A quiet line of words in a card.
import QtQuick
import Dormel.Ui

PlainText {
    width: parent.width
    wrapMode: Text.Wrap
    font: Typeface.at(13, Font.Normal)
    color: AppPalette.secondary
}
