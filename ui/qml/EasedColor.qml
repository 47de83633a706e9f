// How a colour changes.
import QtQuick
import Dormel.Ui

ColorAnimation {
    property var curve: Motion.easeOut

    easing.type: Easing.BezierSpline
    easing.bezierCurve: curve
}
