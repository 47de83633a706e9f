// A button that looks like a line of text until the pointer or the keyboard is at it.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string text

    implicitWidth: label.implicitWidth + 2 * 12
    implicitHeight: 28

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: click()

    FocusRing {
        control: root
        anchors.margins: 0
        radiusOfControl: root.height / 2 - 4
    }
    Text {
        id: label
        anchors.centerIn: parent
        text: root.text
        font: Typeface.at(12, Font.Medium)
        color: Qt.rgba(1, 1, 1, root.down ? 0.35 : root.hovered || root.focusVisible || AppPalette.highContrast ? 0.85 : 0.5)

        Behavior on color {
            EasedColor { duration: 120 }
        }
    }
}
