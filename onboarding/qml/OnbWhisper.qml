// A faint note.
import QtQuick
import Dormel.Ui

Text {
    textFormat: Text.PlainText
    font: Typeface.at(13, Font.Normal)
    color: AppPalette.faint

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
