// A faint note.
import QtQuick
import Dormel.Ui

PlainText {
    font: Typeface.at(13, Font.Normal)
    color: AppPalette.faint
}
