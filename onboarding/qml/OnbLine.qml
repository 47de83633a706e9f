// A line some of whose words stand out and the rest of which is dimmed.
import QtQuick
import Dormel.Ui

Row {
    id: root

    // Objects with `text` and `strong`.
    required property var spans
    required property string plain
    property real size: 17

    Accessible.role: Accessible.StaticText
    Accessible.name: plain

    Repeater {
        model: root.spans.length

        Text {
            required property int index
            readonly property var span: root.spans[index]

            text: span.text
            textFormat: Text.PlainText
            font: Typeface.at(root.size, span.strong ? Font.DemiBold : Font.Normal)
            color: Qt.rgba(1, 1, 1, span.strong ? 0.95 : 0.5)

            Accessible.ignored: true
        }
    }
}
