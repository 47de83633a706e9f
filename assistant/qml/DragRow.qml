// The application's icon and name as something to take hold of.
import QtQuick
import Dormel.Assistant
import Dormel.Ui

Item {
    id: root

    required property DragRowBridge view

    implicitWidth: 498
    implicitHeight: 43
    visible: !view.rowHidden

    Accessible.role: Accessible.ListItem
    Accessible.name: view.name

    Rectangle {
        anchors.fill: parent
        radius: 7
        color: "#2b2b30"
        border.width: 1
        border.color: Qt.rgba(1, 1, 1, pointer.containsMouse ? 0.22 : 0.12)

        Behavior on border.color {
            EasedColor { duration: 120 }
        }
    }
    Item {
        id: icon
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        width: 26
        height: 26

        AppTile {
            anchors.fill: parent
            visible: root.view.icon.toString() === ""
        }
        Image {
            anchors.fill: parent
            source: root.view.icon
            sourceSize: Qt.size(2 * width, 2 * height)
            fillMode: Image.PreserveAspectFit
        }
    }
    Text {
        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, parent.width - x - 12)
        text: root.view.name
        elide: Text.ElideRight
        font: Typeface.at(15, Font.Normal)
        color: AppPalette.text
    }
    MouseArea {
        id: pointer
        anchors.fill: parent
        hoverEnabled: true
        onPressed: root.view.mouseDown(mapToItem(null, 0, 0, width, height))
    }
}
