// A circle that fills clockwise from the top.
import QtQuick
import Dormel.Ui

ProgressRing {
    implicitWidth: 96
    implicitHeight: 96
    lineWidth: 4
    trackColor: Qt.rgba(1, 1, 1, 0.12)
    color: "white"

    Accessible.role: Accessible.ProgressBar
    Accessible.name: Math.round(100 * progress) + " %"
}
