// The plain page of window mode: the state of the lock, and the two rehearsals.
import QtQuick
import Dormel.Settings
import Dormel.Ui

Item {
    id: root

    required property StatusPageBridge view

    readonly property real margin: 24

    implicitWidth: 460
    implicitHeight: 660

    Accessible.role: Accessible.Pane
    Accessible.name: "Dormel"

    Ground {}

    Column {
        id: header
        anchors.horizontalCenter: parent.horizontalCenter
        y: 44
        spacing: 14

        // It draws itself when the window opens.
        Mark {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 40
            height: 40
            color: Qt.rgba(1, 1, 1, 0.9)
            drawn: root.view.showing ? 1 : 0

            Behavior on drawn {
                NumberAnimation {
                    duration: 1400
                    easing.type: Easing.BezierSpline
                    easing.bezierCurve: Motion.easeInOut
                }
            }
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            // The spacing after the last letter is no part of the word.
            anchors.horizontalCenterOffset: font.letterSpacing / 2
            text: "DORMEL"
            font: Typeface.spaced(13, Font.DemiBold, 6)
            color: Qt.rgba(1, 1, 1, 0.45)
        }
    }

    Column {
        x: root.margin
        y: 140
        width: parent.width - 2 * root.margin
        spacing: 20

        SectionCard {
            width: parent.width
            title: "Lock"

            StateRow {
                title: root.view.statusTitle
                text: root.view.statusText
                dot: root.view.armed ? Tone.green : Tone.warm
            }
            Rectangle {
                x: 24
                width: parent.width - x
                height: 1
                color: Qt.rgba(1, 1, 1, 0.06)
            }
            StateRow {
                title: "Schedule"
                text: root.view.scheduleText
                dot: "transparent"
            }
        }
        SectionCard {
            width: parent.width
            title: "Permissions"

            StateRow {
                title: "Accessibility"
                text: root.view.permissionText
                dot: root.view.trusted ? Tone.green : Tone.warm

                PushButton {
                    visible: !root.view.trusted
                    text: "Open Settings"
                    onClicked: root.view.openAccessibilitySettings()
                }
            }
        }
        SectionCard {
            width: parent.width
            title: "Rehearse"

            Text {
                width: parent.width
                text: "The test run plays the whole night in 40 seconds, the demo a single hold. Esc ends either at any moment."
                wrapMode: Text.Wrap
                font: Typeface.at(13, Font.Normal)
                color: Tone.secondary
            }
            Row {
                width: parent.width
                spacing: 12

                PushButton {
                    width: (parent.width - parent.spacing) / 2
                    text: "Test run"
                    onClicked: root.view.testRun()
                }
                PushButton {
                    width: (parent.width - parent.spacing) / 2
                    text: "Demo"
                    enabled: root.view.canRunDemo
                    onClicked: root.view.demo()
                }
            }
            Text {
                width: parent.width
                visible: !root.view.canRunDemo
                text: "The demo needs Accessibility."
                font: Typeface.at(12, Font.Normal)
                color: Tone.faint
            }
        }
    }

    Text {
        x: root.margin + 4
        anchors.verticalCenter: uninstall.verticalCenter
        text: "Dormel " + root.view.versionText
        font: Typeface.at(12, Font.Normal)
        color: Tone.faint
    }
    PlainButton {
        id: uninstall
        anchors.right: parent.right
        anchors.rightMargin: root.margin - 8
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        // Locked in, there is no way out through here.
        visible: !root.view.lockedIn
        text: "Uninstall Dormel"
        onClicked: root.view.uninstall()
    }
}
