// The ring around the control that the keyboard is at.
import QtQuick
import Dormel.Ui

Rectangle {
    required property Pressable control
    property real radiusOfControl: 0

    anchors.fill: control
    anchors.margins: -4
    visible: control.focusVisible
    radius: radiusOfControl + 4
    color: "transparent"
    border.width: 2
    border.color: Qt.rgba(1, 1, 1, 0.6)
}
