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
    property real pixelRatio: 1

    readonly property point place: Qt.point((parent?.x ?? 0) + x, (parent?.y ?? 0) + y)

    width: capWidth
    height: capHeight

    // The edges stand on whole pixels at every scale.
    transform: Translate {
        x: Math.round(root.place.x * root.pixelRatio) / root.pixelRatio - root.place.x
        y: Math.round(root.place.y * root.pixelRatio) / root.pixelRatio - root.place.y
    }

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
