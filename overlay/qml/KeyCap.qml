// One key of the challenge. It lights up while the key counts as held.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property string label
    required property string legend
    required property real capWidth
    required property real capHeight
    required property real labelSize
    required property color labelColor
    required property color fill
    required property color border

    width: capWidth
    height: capHeight

    // Two rectangles: the border lies on the fill and takes nothing from it.
    Rectangle {
        anchors.fill: parent
        radius: 16
        color: root.fill

        Behavior on color {
            ColorAnimation {
                duration: 120
                easing.type: Easing.BezierSpline
                easing.bezierCurve: Motion.easeOut
            }
        }
    }
    Rectangle {
        anchors.fill: parent
        radius: 16
        color: "transparent"
        border.width: 1
        border.color: root.border

        Behavior on border.color {
            ColorAnimation {
                duration: 120
                easing.type: Easing.BezierSpline
                easing.bezierCurve: Motion.easeOut
            }
        }
    }

    Column {
        anchors.centerIn: parent
        spacing: 1

        Text {
            id: name
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.label
            font: Typeface.at(root.labelSize, Font.Medium)
            color: root.labelColor

            Behavior on color {
                ColorAnimation {
                    duration: 120
                    easing.type: Easing.BezierSpline
                    easing.bezierCurve: Motion.easeOut
                }
            }
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: root.legend !== ""
            text: root.legend
            font: Typeface.at(10, Font.Medium)
            color: name.color
            opacity: 0.6
        }
    }
}
