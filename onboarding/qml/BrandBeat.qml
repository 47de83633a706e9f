// The greeting.
import QtQuick
import Dormel.Onboarding

OnbBeat {
    id: root

    required property BrandBridge beat

    name: beat.sub.text
    pill: pill

    FrameAnimation {
        running: root.enabled && root.beat.trim < 1
        onTriggered: root.beat.advance()
    }

    OnbReveal {
        on: root.beat.markOn

        DormelMarkDraw {
            width: root.beat.markSide
            height: root.beat.markSide
            trim: root.beat.trim
        }
    }
    OnbReveal {
        above: 40
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
