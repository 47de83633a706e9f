// A button with a word or two on it.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string text
    // The one of several that is meant to be pressed.
    property bool prominent: false
    property real radius: height / 2
    readonly property real labelHeight: label.implicitHeight

    implicitWidth: Math.max(96, label.implicitWidth + 2 * 20)
    implicitHeight: 36

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: click()

    Rectangle {
        anchors.fill: parent
        radius: root.radius
        color: root.prominent ? Qt.rgba(1, 1, 1, !root.enabled ? 0.2 : root.down ? 0.75 : root.hovered ? 0.9 : 1)
                              : Qt.rgba(1, 1, 1, !root.enabled ? 0.03 : root.down ? 0.05 : root.hovered ? 0.13 : 0.08)

        Behavior on color {
            EasedColor { duration: 120 }
        }
    }
    FocusRing {
        control: root
        radiusOfControl: root.radius
    }
    Text {
        id: label
        anchors.centerIn: parent
        text: root.text
        font: Typeface.at(13, Font.DemiBold)
        color: root.prominent ? "black" : Qt.rgba(1, 1, 1, root.enabled ? 0.95 : 0.3)
    }
}
