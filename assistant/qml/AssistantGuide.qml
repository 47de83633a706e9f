// The guide that docks at the bottom of the settings window.
import QtQuick
import Dormel.Assistant
import Dormel.Ui

Item {
    id: root

    required property AssistantGuideBridge view

    implicitWidth: 530
    implicitHeight: 109

    // It keeps its proportions while it flies in at another size.
    Item {
        width: root.implicitWidth
        height: root.implicitHeight
        transform: Scale {
            xScale: root.width / root.implicitWidth
            yScale: root.height / root.implicitHeight
        }

        GuideBackdrop {
            anchors.fill: parent
        }

        Pressable {
            id: back
            x: 12
            y: 12
            width: 28
            height: 28
            activeFocusOnTab: false

            Accessible.role: Accessible.Button
            Accessible.name: qsTr("Back")

            onClicked: root.view.back()

            Rectangle {
                anchors.fill: parent
                radius: 14
                color: Qt.rgba(1, 1, 1, back.down ? 0.05 : back.hovered ? 0.1 : 0)

                Behavior on color {
                    EasedColor { duration: 120 }
                }
            }
            Glyph {
                anchors.centerIn: parent
                width: 16
                height: 16
                shape: Glyph.ShortChevronLeft
                lineWidth: 1.7
                color: Qt.rgba(1, 1, 1, 0.72)
            }
        }

        Row {
            id: line
            anchors.horizontalCenter: parent.horizontalCenter
            y: 12
            height: 28
            spacing: 8

            Glyph {
                id: arrow
                // How far it has risen.
                property real bounce: 0

                width: 16
                height: 16
                shape: Glyph.ArrowUp
                lineWidth: 1.7
                anchors.verticalCenter: parent.verticalCenter
                anchors.verticalCenterOffset: 3
                color: AppPalette.text
                transform: Translate {
                    y: arrow.bounce
                }

                SequentialAnimation on bounce {
                    running: root.view.showing && !Motion.isReduced
                    loops: Animation.Infinite

                    EasedNumber { to: -6; duration: 700 }
                    EasedNumber { to: 0; duration: 700 }
                }
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, 530 - 2 * 48 - arrow.width - line.spacing)
                text: root.view.title
                elide: Text.ElideRight
                font: Typeface.at(13, Font.Medium)
                color: AppPalette.text
            }
        }

        DragRow {
            x: 16
            y: 50
            view: root.view.row
        }
    }
}
