// A line of text whose digits all take the same width, so that nothing around a changing number moves. With `rolls`, a
// digit that changes rolls over, as a counter does that counts down.
import QtQuick
import Dormel.Ui

Row {
    id: root

    required property string text
    required property color color
    required property font font
    property bool rolls: false

    // Single digits, colons, and whatever stands between them.
    readonly property var pieces: text.match(/[0-9]|:|[^0-9:]+/g) ?? []
    readonly property real digitWidth: Typeface.digitWidth(font)
    readonly property real colonRise: Typeface.colonRise(font)

    // Counted from the right: when 10 becomes 9, the last digit changes and the first one goes.
    layoutDirection: Qt.RightToLeft

    Repeater {
        model: root.pieces.length

        RollingDigit {
            required property int index
            readonly property string piece: root.pieces[root.pieces.length - 1 - index] ?? ""

            text: piece
            color: root.color
            font: root.font
            cellWidth: root.digitWidth
            colonRise: root.colonRise
            rolls: root.rolls
        }
    }
}
