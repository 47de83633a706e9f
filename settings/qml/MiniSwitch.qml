// The switch of the system's list in miniature. It shows, and cannot be operated.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property bool on
    // How far it is over: 0 off, 1 on.
    property real position: on ? 1 : 0

    implicitWidth: 30
    implicitHeight: 18

    Behavior on position {
        EasedNumber { duration: 400 }
    }

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Qt.rgba(1, 1, 1, 0.18)
        opacity: 1 - root.position
    }
    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Qt.rgba(0.04, 0.52, 1.0, 1)
        opacity: root.position
    }
    Item {
        x: (root.width - width) / 2 - 6 + 12 * root.position
        y: (root.height - height) / 2
        width: 15
        height: 15

        // The shadow: a blur of two steps.
        Rectangle {
            x: -1
            width: parent.width + 2
            height: parent.height + 2
            radius: width / 2
            color: Qt.rgba(0, 0, 0, 0.12)
        }
        Rectangle {
            y: 1
            width: parent.width
            height: parent.height
            radius: width / 2
            color: Qt.rgba(0, 0, 0, 0.2)
        }
        Rectangle {
            anchors.fill: parent
            radius: width / 2
            color: "white"
        }
    }
}
