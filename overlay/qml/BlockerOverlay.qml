// What a locked-out user sees in the middle of each black screen.
import QtQuick
import Dormel.Overlay
import Dormel.Ui

Item {
    id: root

    required property BlockerOverlayBridge view

    // How far the fade-in has come, how much of the content a lowering has left, and how much of the challenge there
    // is beside the confirmation that takes its place; each 0 to 1.
    property real appearance: view.appeared ? 1 : 0
    property real presence: view.fadingOut ? 0 : 1
    property real challenge: view.showUnlockConfirm ? 0 : 1

    readonly property real rise: 20

    // Room for the column at its widest and for its rise. A screen smaller than that shows all of it, smaller.
    readonly property size fitting: Qt.size(464, column.height + 2 * (rise + 4))
    implicitWidth: fitting.width
    implicitHeight: fitting.height

    opacity: appearance

    Behavior on appearance {
        enabled: root.view.appearDuration > 0
        NumberAnimation {
            duration: root.view.appearDuration
            easing.type: Easing.BezierSpline
            easing.bezierCurve: Motion.easeOut
        }
    }
    Behavior on presence {
        NumberAnimation {
            duration: root.view.fadeOutDuration
            easing.type: Easing.BezierSpline
            easing.bezierCurve: Motion.easeIn
        }
    }
    Behavior on challenge {
        NumberAnimation {
            duration: 400
            easing.type: Easing.BezierSpline
            easing.bezierCurve: Motion.easeOut
        }
    }

    Item {
        id: column

        anchors.centerIn: parent
        anchors.alignWhenCentered: false
        anchors.verticalCenterOffset: Math.round((1 - root.appearance) * root.rise * root.view.pixelRatio) / root.view.pixelRatio
        width: root.fitting.width
        height: hint.y + hint.height
        opacity: root.appearance * root.presence
        scale: Math.min(1, root.width / root.fitting.width, root.height / root.fitting.height)

        Text {
            id: title
            anchors.horizontalCenter: parent.horizontalCenter
            // The spacing after the last letter is no part of the word.
            anchors.horizontalCenterOffset: font.letterSpacing / 2
            text: "DORMEL"
            font: Typeface.spaced(15, Font.DemiBold, 8)
            color: Qt.rgba(1, 1, 1, 0.45)
        }

        HoldDial {
            id: dial
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.top: title.bottom
            anchors.topMargin: 44
            view: root.view
            opacity: root.challenge
        }

        UnlockConfirm {
            anchors.centerIn: dial
            confirmation: root.view.confirmation
            relockText: root.view.relockText
            opacity: 1 - root.challenge
        }

        Row {
            id: keys
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.top: dial.bottom
            anchors.topMargin: 60
            height: 68
            spacing: 14
            opacity: root.challenge

            Repeater {
                model: root.view.keys
                KeyCap {
                    pixelRatio: root.view.pixelRatio
                }
            }
        }

        CrossfadeText {
            id: status
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.top: keys.bottom
            anchors.topMargin: 32
            text: root.view.statusText
            color: root.view.statusColor
            font: Typeface.at(16, Font.Light)
            duration: 300
        }

        Text {
            id: hint
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.top: status.bottom
            anchors.topMargin: 16
            text: root.view.hint
            font: Typeface.at(13, Font.Light)
            color: Qt.rgba(1, 1, 1, 0.20)
            opacity: root.challenge
        }
    }
}
