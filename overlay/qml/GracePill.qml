// The small pill that counts the grace period down.
import QtQuick
import Dormel.Overlay
import Dormel.Ui

Item {
    id: root

    required property GraceCountdownBridge view

    implicitWidth: line.width + 2 * 20
    implicitHeight: line.height + 2 * 14

    Item {
        anchors.centerIn: parent
        width: root.implicitWidth
        height: root.implicitHeight

        CapsuleShadow {
            anchors.fill: parent
            anchors.margins: -margin
        }
        // Two rectangles: the border lies on the fill and takes nothing from it.
        Rectangle {
            anchors.fill: parent
            radius: height / 2
            color: Qt.rgba(0, 0, 0, 0.75)
        }
        Rectangle {
            anchors.fill: parent
            radius: height / 2
            color: "transparent"
            border.width: 1
            border.color: Qt.rgba(root.view.urgencyColor.r, root.view.urgencyColor.g, root.view.urgencyColor.b, root.view.urgencyColor.a * 0.30)
        }

        Row {
            id: line
            anchors.centerIn: parent
            spacing: 12

            Item {
                anchors.verticalCenter: parent.verticalCenter
                width: 28
                height: 28

                ProgressRing {
                    // The stroke's middle runs along the circle.
                    anchors.fill: parent
                    anchors.margins: -lineWidth / 2
                    lineWidth: 2.5
                    trackColor: Qt.rgba(1, 1, 1, 0.20)
                    color: root.view.urgencyColor
                    progress: root.view.graceProgress

                    Behavior on progress {
                        NumberAnimation {
                            duration: 1000
                        }
                    }
                }
            }
            TabularText {
                anchors.verticalCenter: parent.verticalCenter
                text: root.view.graceText
                font: Typeface.at(14, Font.Medium)
                color: Qt.rgba(1, 1, 1, 0.90)
            }
        }
    }
}
