// What the answers come to: the sleep that is lost in a week, or praise.
import QtQuick
import Dormel.Onboarding
import Dormel.Ui

OnbBeat {
    id: root

    required property MirrorBridge beat

    name: beat.headline.text
    pill: pill

    OnbReveal {
        on: root.beat.headline.on

        OnbH1 {
            plain: root.beat.headline.text
            size: root.beat.ahead ? 36 : 30
        }
    }
    OnbReveal {
        visible: !root.beat.ahead
        above: 4
        on: root.beat.figureOn

        Text {
            // A figure has room above and below it for letters that it has not.
            height: implicitHeight - 24
            verticalAlignment: Text.AlignVCenter
            // The letters stand closer by 3, after the last one, too.
            leftPadding: 3
            text: root.beat.figure
            font: Typeface.spaced(124, Font.Bold, -3)
            color: "white"

            Accessible.role: Accessible.StaticText
            Accessible.name: root.beat.figureName
        }
    }
    OnbReveal {
        visible: !root.beat.ahead
        above: 4
        on: root.beat.unit.on

        OnbH1 {
            plain: root.beat.unit.text
            size: 30
        }
    }
    OnbReveal {
        above: root.beat.ahead ? 16 : 24
        on: root.beat.sub.on

        OnbSub {
            text: root.beat.sub.text
        }
    }
    OnbReveal {
        visible: root.beat.ahead
        above: 8
        on: root.beat.promise.on

        OnbSub {
            text: root.beat.promise.text
        }
    }
    OnbReveal {
        above: root.beat.ahead ? 48 : 40
        on: root.beat.button.on

        OnbPill {
            id: pill
            title: root.beat.button.title
            available: root.beat.button.enabled
            onClicked: root.beat.press()
        }
    }
}
