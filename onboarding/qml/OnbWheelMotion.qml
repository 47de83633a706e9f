// How everything about a wheel moves when it is turned.
import QtQuick
import Dormel.Ui

NumberAnimation {
    duration: 400
    easing.type: Easing.BezierSpline
    easing.bezierCurve: Motion.reveal
}
