// An answer that can be picked.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string label
    property bool selected: false
    // One of several that is the answer.
    property bool exclusive: false
    property bool hovering: hovered
    property bool ringed: focusVisible

    implicitWidth: name.implicitWidth + 2 * 26
    implicitHeight: 50

    Accessible.role: exclusive ? Accessible.RadioButton : Accessible.CheckBox
    Accessible.name: label
    Accessible.focusable: true
    Accessible.checkable: true
    Accessible.checked: selected
    Accessible.onPressAction: click()
    Accessible.onToggleAction: click()

    OnbCapsule {
        anchors.fill: parent
        fill: Qt.rgba(1, 1, 1, root.selected ? 0.95 : root.hovering ? 0.12 : 0.06)
        hairline: AppPalette.hairline
        grow: root.down ? -1 : root.hovering || root.selected ? 1 : 0

        Behavior on fill {
            EasedColor { duration: 300; curve: Motion.reveal }
        }
        Behavior on grow {
            EasedNumber { duration: 300; curve: Motion.reveal }
        }

        Text {
            id: name
            anchors.centerIn: parent
            text: root.label
            textFormat: Text.PlainText
            font: Typeface.at(16, Font.Medium)
            color: root.selected ? AppPalette.background : Qt.rgba(1, 1, 1, root.hovering ? 0.95 : 0.8)
        }
    }
    FocusRing {
        control: root
        visible: root.ringed
        radiusOfControl: root.height / 2
    }
}
