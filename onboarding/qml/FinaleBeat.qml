// What was set up, and good night.
import QtQuick
import Dormel.Onboarding
import Dormel.Ui

OnbBeat {
    id: root

    required property FinaleBridge beat

    name: beat.headline.text
    pill: pill

    OnbReveal {
        on: root.beat.headline.on

        OnbH1 {
            plain: root.beat.headline.text
        }
    }
    OnbReveal {
        above: 32
        on: root.beat.locksAt.on

        OnbLine {
            spans: root.beat.locksAtSpans
            plain: root.beat.locksAt.text
            size: 20
        }
    }
    OnbReveal {
        above: 16
        on: root.beat.everyNight.on

        Note {
            text: root.beat.everyNight.text
        }
    }
    OnbReveal {
        above: 12
        on: root.beat.goneByMorning.on

        Note {
            text: root.beat.goneByMorning.text
        }
    }
    OnbReveal {
        above: 48
        on: root.beat.button.on

        OnbPill {
            id: pill
            title: root.beat.button.title
            available: root.beat.button.enabled
            onClicked: root.beat.press()
        }
    }

    component Note: Text {
        textFormat: Text.PlainText
        font: Typeface.at(16, Font.Normal)
        color: Qt.rgba(1, 1, 1, 0.5)

        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
