// A question that chips answer.
import QtQuick
import Dormel.Onboarding

OnbBeat {
    id: root

    required property ChipsBridge beat

    name: beat.headline.text
    pill: beat.exclusive ? null : pill

    OnbReveal {
        on: root.beat.headline.on

        OnbH1 {
            plain: root.beat.headline.text
            markup: root.beat.headline.markup
        }
    }
    OnbReveal {
        visible: root.beat.sub.text !== ""
        above: 16
        on: root.beat.sub.on

        OnbSub {
            text: root.beat.sub.text
        }
    }
    OnbReveal {
        above: 40
        on: root.beat.chipsOn

        OnbChips {
            labels: root.beat.labels
            selected: root.beat.selected
            chipWidth: root.beat.chipWidth
            exclusive: root.beat.exclusive
            onPressed: chip => root.beat.pressChip(chip)
        }
    }
    OnbReveal {
        visible: !root.beat.exclusive
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
