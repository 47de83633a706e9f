// The way back to the question before.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    property bool hovering: hovered
    property bool ringed: focusVisible

    implicitWidth: 36
    implicitHeight: 36

    Accessible.role: Accessible.Button
    Accessible.name: qsTr("Back")
    Accessible.focusable: true
    Accessible.onPressAction: click()

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Qt.rgba(1, 1, 1, root.down ? 0.05 : root.hovering ? 0.14 : 0.08)

        Behavior on color {
            EasedColor { duration: 250 }
        }
    }
    Glyph {
        anchors.centerIn: parent
        anchors.horizontalCenterOffset: -1
        width: 15
        height: 15
        shape: Glyph.ChevronLeft
        lineWidth: 2
        color: Qt.rgba(1, 1, 1, root.hovering || root.ringed ? 0.95 : 0.6)
    }
    FocusRing {
        control: root
        visible: root.ringed
        radiusOfControl: root.height / 2
    }
}
