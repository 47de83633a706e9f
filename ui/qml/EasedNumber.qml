// How something moves, grows or fades.
import QtQuick
import Dormel.Ui

NumberAnimation {
    property var curve: Motion.easeInOut

    easing.type: Easing.BezierSpline
    easing.bezierCurve: curve
}
