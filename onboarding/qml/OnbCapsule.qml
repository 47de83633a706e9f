// The ground of a button with round ends, and what stands on it. It grows by `grow` points on each side: its own
// edges move, since an item that is scaled shows seams in the software scene graph.
import QtQuick
import Dormel.Ui

Item {
    id: root

    property color fill
    property color hairline: "transparent"
    property real grow: 0
    default property alias content: body.data

    Rectangle {
        anchors.fill: parent
        anchors.margins: -root.grow
        radius: height / 2
        color: root.fill
    }
    // It lies on the fill and takes nothing from it.
    Rectangle {
        anchors.fill: parent
        anchors.margins: -root.grow
        radius: height / 2
        color: "transparent"
        border.width: 1
        border.color: root.hairline
    }
    Item {
        id: body
        anchors.fill: parent
        scale: 1 + 2 * root.grow / root.width
    }
}
