// A night in seventeen seconds.
import QtQuick
import Dormel.Onboarding
import Dormel.Ui

OnbBeat {
    id: root

    required property HowItWorksBridge beat

    name: beat.kicker.text
    pill: pill

    FrameAnimation {
        running: root.enabled && root.beat.ringFills
        onTriggered: root.beat.advance()
    }

    OnbReveal {
        on: root.beat.kicker.on

        OnbKicker {
            text: root.beat.kicker.text
        }
    }
    Item {
        width: 1
        height: Math.round(32 * root.room)
    }
    Item {
        anchors.horizontalCenter: parent.horizontalCenter
        width: root.beat.stageWidth
        height: root.beat.stageHeight - Math.round(60 * (1 - root.room))

        OnbPhase {
            phase: 1
            currentPhase: root.beat.phase

            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: root.beat.clock
                font: Typeface.at(128, Font.ExtraLight)
                color: "white"

                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Item {
                width: 1
                height: 12
            }
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
            Item {
                width: 1
                height: 40
            }
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
            }
            Item {
                width: 1
                height: 36
            }
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

            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: root.beat.closingLine
                textFormat: Text.PlainText
                font: Typeface.spaced(26, Font.DemiBold, -0.4)
                color: AppPalette.text

                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Item {
                width: 1
                height: 12
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: root.beat.closingSubline
                textFormat: Text.PlainText
                font: Typeface.at(17, Font.Normal)
                color: Qt.rgba(1, 1, 1, 0.5)

                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }
    }
    OnbReveal {
        above: 32
        on: root.beat.button.on

        OnbPill {
            id: pill
            title: root.beat.button.title
            quiet: root.beat.button.quiet
            available: root.beat.button.enabled
            onClicked: root.beat.press()
        }
    }
}
