// A headline. `markup` is the same text with its emphasis, where it has one.
import QtQuick
import Dormel.Ui

Text {
    id: root

    property string markup: ""
    property bool soft: false
    // Read aloud, and shown where there is no emphasis.
    required property string plain
    property real size: 36

    text: markup !== "" ? markup : plain
    textFormat: markup !== "" ? Text.StyledText : Text.PlainText
    horizontalAlignment: Text.AlignHCenter
    font: Typeface.spaced(size, Font.Bold, -0.012 * size)
    color: soft ? AppPalette.secondary : AppPalette.text

    Accessible.role: Accessible.Heading
    Accessible.name: plain
}
