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
        model: root.spans

        Text {
            required property var modelData

            text: modelData.text
            textFormat: Text.PlainText
            font: Typeface.at(root.size, modelData.strong ? Font.DemiBold : Font.Normal)
            color: Qt.rgba(1, 1, 1, modelData.strong ? 0.95 : 0.5)

            Accessible.ignored: true
        }
    }
}
