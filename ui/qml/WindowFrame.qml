// What a window wears above its content: a hairline around it and, in a strip that is otherwise clear, the buttons that
// minimise and close it.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property bool minimizable

    WindowBackground {
        color: "transparent"
        border.width: 1
        border.color: AppPalette.hairline
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.top: parent.top
        anchors.topMargin: 8
        spacing: 4

        WindowButton {
            visible: root.minimizable
            name: qsTr("Minimize")
            onClicked: root.Window.window.showMinimized()

            Rectangle {
                anchors.centerIn: parent
                width: 9
                height: 1.5
                color: "white"
            }
        }
        WindowButton {
            name: qsTr("Close")
            onClicked: root.Window.window.close()

            Repeater {
                model: [45, -45]

                Rectangle {
                    required property int modelData

                    anchors.centerIn: parent
                    width: 11
                    height: 1.5
                    rotation: modelData
                    antialiasing: true
                    color: "white"
                }
            }
        }
    }
}
