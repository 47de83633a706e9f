// One row of a wheel: brightest and largest when it is the selected one, dimmer beside it, dimmest further away.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string label
    property bool selected: false
    property bool near: false
    // Too far away to be seen, so the pointer goes through it; assistive tools can choose it all the same.
    property bool away: false
    property bool hovering: hovered
    property bool ringed: focusVisible

    signal confirmed

    activeFocusOnTab: selected
    underPointer: !away

    Accessible.role: Accessible.ListItem
    Accessible.name: label
    Accessible.focusable: true
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: click()

    Keys.onReturnPressed: event => {
        if (!event.isAutoRepeat)
            confirmed();
    }
    Keys.onEnterPressed: event => {
        if (!event.isAutoRepeat)
            confirmed();
    }

    Item {
        id: word
        anchors.centerIn: parent
        width: text.implicitWidth
        height: text.implicitHeight
        scale: root.selected ? 1 : root.near ? 0.72 : 0.58
        opacity: root.selected ? 1 : root.away ? 0 : root.hovering ? 0.7 : root.near ? 0.36 : 0.14

        Behavior on scale {
            OnbWheelMotion {}
        }
        Behavior on opacity {
            OnbWheelMotion {}
        }

        Text {
            id: text
            text: root.label
            textFormat: Text.PlainText
            font: Typeface.spaced(42, Font.Bold, -0.4)
            color: "white"
        }
    }
    FocusRing {
        control: root
        anchors.fill: undefined
        anchors.centerIn: parent
        width: word.width + 2 * 24
        height: root.height
        visible: root.ringed
        radiusOfControl: root.height / 2 - 4
    }
}
