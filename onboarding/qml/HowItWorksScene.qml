// A night in seventeen seconds.
import QtQuick
import Dormel.Onboarding
import Dormel.Ui

Item {
    id: root

    required property HowItWorksBridge beat
    // How roomy the screen is, 0 to 1.
    required property real room

    width: 560
    height: 250 - Math.round(60 * (1 - room))

    OnbPhase {
        phase: 1
        currentPhase: root.beat.phase

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.beat.clock
            font: Typeface.at(128, Font.ExtraLight)
            color: "white"
        }
        Gap { height: 12 }
        OnbSub {
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.beat.caption
        }
    }
    OnbPhase {
        phase: 2
        currentPhase: root.beat.phase

        OnbLine {
            anchors.horizontalCenter: parent.horizontalCenter
            spans: root.beat.snoozeSpans
            plain: root.beat.snoozeLine
            size: 20
        }
        Gap { height: 40 }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 12

            Repeater {
                model: root.beat.keycaps

                OnbKeycap {
                    required property string modelData
                    required property int index

                    label: modelData
                    held: index < root.beat.heldCount
                }
            }
        }
    }
    OnbPhase {
        phase: 3
        currentPhase: root.beat.phase

        OnbRing {
            anchors.horizontalCenter: parent.horizontalCenter
            width: implicitWidth
            height: implicitHeight
            progress: root.beat.ringProgress

            Behavior on progress {
                NumberAnimation {
                    duration: root.beat.ringDuration
                }
            }
        }
        Gap { height: 36 }
        OnbLine {
            anchors.horizontalCenter: parent.horizontalCenter
            spans: root.beat.graceSpans
            plain: root.beat.graceLine
            size: 20
        }
    }
    OnbPhase {
        phase: 4
        currentPhase: root.beat.phase

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: qsTr("It gets you to sleep.")
            font: Typeface.spaced(26, Font.DemiBold, -0.4)
            color: AppPalette.text
        }
        Gap { height: 12 }
        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: qsTr("Automatically gone by the morning.")
            font: Typeface.at(17, Font.Normal)
            color: Qt.rgba(1, 1, 1, 0.5)
        }
    }
}
