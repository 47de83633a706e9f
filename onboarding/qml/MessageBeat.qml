// A screen that says something: a promise, an invitation, praise.
import QtQuick
import Dormel.Onboarding

OnbBeat {
    id: root

    required property BeatBridge beat

    name: beat.headline.text
    pill: pill

    OnbReveal {
        on: root.beat.headline.on

        OnbH1 {
            plain: root.beat.headline.text
            markup: root.beat.headline.markup
        }
    }
    OnbReveal {
        above: 16
        on: root.beat.sub.on

        OnbSub {
            text: root.beat.sub.text
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
}
