// A secondary line, under a headline.
import QtQuick
import Dormel.Ui

Text {
    width: Math.min(560, implicitWidth)
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    horizontalAlignment: Text.AlignHCenter
    lineHeight: 1.3
    font: Typeface.at(17, Font.Normal)
    color: AppPalette.secondary

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
