// The button of a screen: a capsule. A quiet one is a way on that nobody has to take.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string title
    property bool quiet: false
    // Whether it can be pressed, as far as the screen is concerned.
    property bool available: true
    property bool hovering: hovered
    property bool ringed: focusVisible

    implicitWidth: Math.max(132, label.implicitWidth + 2 * 28)
    implicitHeight: 46

    Accessible.role: Accessible.Button
    Accessible.name: title
    Accessible.focusable: true
    Accessible.onPressAction: click()

    enabled: available
    // Not by `enabled`, which the whole screen loses when it leaves.
    opacity: available ? 1 : 0.25
    Behavior on opacity {
        EasedNumber { duration: 200 }
    }

    OnbCapsule {
        id: capsule
        anchors.fill: parent
        fill: root.quiet ? Qt.rgba(1, 1, 1, root.hovering ? 0.13 : 0.08)
                         : Qt.rgba(1, 1, 1, root.down ? 0.8 : root.hovering ? 1 : 0.92)
        grow: root.down ? -1 : root.hovering ? 1.5 : 0

        Behavior on fill {
            EasedColor { duration: 250 }
        }
        Behavior on grow {
            EasedNumber { duration: 250; curve: Motion.easeOut }
        }

        Text {
            id: label
            anchors.centerIn: parent
            text: root.title
            textFormat: Text.PlainText
            font: Typeface.at(15, Font.DemiBold)
            // Dark on a capsule that has all but gone could not be read.
            color: root.quiet ? Qt.rgba(1, 1, 1, root.hovering ? 0.95 : 0.7) : root.available ? AppPalette.background : "white"
        }
    }
    FocusRing {
        control: root
        visible: root.ringed
        radiusOfControl: root.height / 2
    }
}
