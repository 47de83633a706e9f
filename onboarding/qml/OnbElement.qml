// One element of a screen: chooses the component that draws its kind.
import QtQuick
import Dormel.Onboarding
import Dormel.Ui

OnbReveal {
    id: element

    required property BeatBridge beat
    // How roomy the screen is, 0 to 1.
    required property real room
    required property int index
    required property string kind
    required property string words
    required property string markup
    required property var spans
    required property var parts
    required property var chosen
    required property real size
    required property bool quiet
    required property bool available


    function press(part: int) {
        beat.press(index, part);
    }

    visible: kind !== "sub" || words !== ""

    Loader {
        sourceComponent: ({
            mark: mark,
            headline: headline,
            sub: sub,
            kicker: kicker,
            whisper: whisper,
            line: line,
            note: note,
            figure: figure,
            fact: fact,
            sources: sources,
            wheel: wheel,
            choice: chips,
            chips: chips,
            permission: permission,
            scene: scene,
            button: button
        })[element.kind]
    }

    Component {
        id: mark

        DormelMarkDraw {
            width: element.size
            height: element.size
            drawing: element.on
        }
    }
    Component {
        id: headline

        OnbH1 {
            plain: element.words
            markup: element.markup
            size: element.size > 0 ? element.size : 36
        }
    }
    Component {
        id: sub

        OnbSub {
            text: element.words
        }
    }
    Component {
        id: kicker

        OnbKicker {
            text: element.words
        }
    }
    Component {
        id: whisper

        OnbWhisper {
            text: element.words
        }
    }
    Component {
        id: line

        OnbLine {
            spans: element.spans
            plain: element.words
            size: element.size
        }
    }
    Component {
        id: note

        PlainText {
            text: element.words
            font: Typeface.at(16, Font.Normal)
            color: Qt.rgba(1, 1, 1, 0.5)
        }
    }
    Component {
        id: figure

        Text {
            // A figure has room above and below it for letters that it has not.
            height: implicitHeight - 24
            verticalAlignment: Text.AlignVCenter
            // The letters stand closer by 3, after the last one, too.
            leftPadding: 3
            text: element.parts[0]
            font: Typeface.spaced(124, Font.Bold, -3)
            color: "white"

            Accessible.role: Accessible.StaticText
            // What it comes to: a screen reader is told this once, and not each step of the counting.
            Accessible.name: element.words
        }
    }
    Component {
        id: fact

        OnbFact {
            text: element.words
            qualifier: element.parts[0]
        }
    }
    Component {
        id: sources

        Row {
            spacing: 32

            Repeater {
                model: element.parts.length

                OnbWordmark {
                    required property int index

                    label: element.parts[index]
                    onClicked: element.press(index)
                }
            }
        }
    }
    Component {
        id: wheel

        OnbWheel {
            rowHeight: Math.round(30 + 22 * element.room)
            name: element.words
            labels: element.parts
            position: element.chosen[0]
            onSelected: row => element.press(row)
            onConfirmed: element.beat.pressButton()
        }
    }
    Component {
        id: chips

        OnbChips {
            labels: element.parts
            chosen: element.chosen
            chipWidth: element.size
            exclusive: element.kind === "choice"
            onPressed: chip => element.press(chip)
        }
    }
    Component {
        id: permission

        OnbPermissionRow {
            width: element.size
            name: element.words
            granted: element.chosen.length > 0
            grantTitle: element.parts[0]
            onGrant: element.press(0)
        }
    }
    Component {
        id: scene

        HowItWorksScene {
            beat: element.beat as HowItWorksBridge
            room: element.room
        }
    }
    Component {
        id: button

        OnbPill {
            title: element.words
            quiet: element.quiet
            available: element.available
            onClicked: element.press(0)
        }
    }
}
