// The permission to take the keyboard.
import QtQuick
import Dormel.Onboarding
import Dormel.Ui

OnbBeat {
    id: root

    required property AccessibilityBridge beat

    name: beat.headline.text
    pill: pill

    OnbReveal {
        on: root.beat.headline.on

        OnbH1 {
            plain: root.beat.headline.text
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
        above: 40
        on: root.beat.row.on

        OnbPermissionRow {
            width: root.beat.rowWidth
            name: root.beat.row.text
            granted: root.beat.granted
            grantTitle: root.beat.grantTitle
            onGrant: root.beat.grant()
        }
    }
    OnbReveal {
        visible: root.beat.advice !== ""
        above: 24
        on: root.beat.row.on

        OnbSub {
            text: root.beat.advice
        }
    }
    OnbReveal {
        above: 40
        on: root.beat.button.on

        OnbPill {
            id: pill
            title: root.beat.button.title
            available: root.beat.button.enabled
            onClicked: root.beat.press()
        }
    }
}
