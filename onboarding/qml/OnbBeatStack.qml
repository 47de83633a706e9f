// The body of a screen: a vertical stack in the middle of the area.
import QtQuick

Item {
    id: root

    default property alias content: stack.data
    readonly property real horizontalPadding: 72

    anchors.fill: parent

    Column {
        id: stack
        x: root.horizontalPadding
        y: Math.max(0, Math.round((root.height - height) / 2))
        width: root.width - 2 * root.horizontalPadding
    }
}
