// A switch. It asks to be toggled and shows what came of it: refused, it goes back to where it was.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string name
    required property bool checked
    // How far it is over: 0 off, 1 on.
    property real position: checked ? 1 : 0
    // How far a refused switch is from where it belongs.
    property real tug: 0
    readonly property real shown: position + (checked ? -tug : tug)

    signal toggled(bool on)

    implicitWidth: 42
    implicitHeight: 24

    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    Accessible.focusable: true
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: click()
    Accessible.onToggleAction: click()

    onClicked: {
        const before = checked;
        toggled(!before);
        if (checked === before)
            springBack.restart();
    }

    Behavior on position {
        EasedNumber { duration: 180 }
    }
    SequentialAnimation {
        id: springBack

        EasedNumber {
            target: root
            property: "tug"
            to: 0.55
            duration: 110
            curve: Motion.easeOut
        }
        EasedNumber {
            target: root
            property: "tug"
            to: 0
            duration: 260
        }
    }

    FocusRing {
        control: root
        radiusOfControl: root.height / 2
    }
    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Qt.rgba(1, 1, 1, root.hovered ? 0.16 : 0.12)
    }
    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: root.down ? Qt.darker(AppPalette.green, 1.15) : AppPalette.green
        opacity: root.shown * (root.enabled ? 1 : 0.5)
    }
    Rectangle {
        x: 2 + root.shown * (root.width - width - 4)
        y: 2
        width: 20
        height: 20
        radius: 10
        color: Qt.rgba(1, 1, 1, root.enabled ? 0.95 : 0.5)
    }
}
