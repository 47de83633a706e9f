// A secondary line, under a headline.
import QtQuick
import Dormel.Ui

PlainText {
    width: Math.min(560, implicitWidth)
    wrapMode: Text.Wrap
    horizontalAlignment: Text.AlignHCenter
    lineHeight: 1.3
    font: Typeface.at(17, Font.Normal)
    color: AppPalette.secondary
}
