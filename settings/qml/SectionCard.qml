// A titled card that frames one section of a page.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property string title
    default property alias content: content.data

    implicitHeight: ground.y + ground.height

    Accessible.role: Accessible.Grouping
    Accessible.name: title

    Text {
        id: caption
        x: 4
        text: root.title
        font: Typeface.at(12, Font.Medium)
        color: AppPalette.faint
    }
    Rectangle {
        id: ground
        anchors.top: caption.bottom
        anchors.topMargin: 8
        width: parent.width
        height: content.height + 2 * 16
        radius: 16
        color: Qt.rgba(1, 1, 1, 0.045)
        border.width: 1
        border.color: Qt.rgba(1, 1, 1, 0.06)

        Column {
            id: content
            x: 16
            y: 16
            width: parent.width - 2 * 16
            spacing: 14
        }
    }
}
