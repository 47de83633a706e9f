// One row of a wheel: brightest and largest when it is the selected one, dimmer and smaller the further away it is.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string label
    // From the selected row.
    required property int distance
    readonly property bool selected: distance === 0
    readonly property bool near: distance === 1
    property bool hovering: hovered
    property bool ringed: focusVisible

    signal confirmed

    activeFocusOnTab: selected

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
        scale: root.height / 52 * (root.selected ? 1 : root.near ? 0.72 : 0.58)
        opacity: root.selected ? 1 : root.hovering ? 0.7 : root.near ? 0.46 : 0.16 + 0.28 / root.distance

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
