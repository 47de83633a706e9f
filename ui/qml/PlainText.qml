// A text that is read as it stands: without markup, and aloud as it is written.
import QtQuick

Text {
    textFormat: Text.PlainText

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
