// A question that a wheel answers.
import QtQuick
import Dormel.Onboarding

OnbBeat {
    id: root

    required property WheelBridge beat

    name: beat.headline.text
    pill: pill

    // Where the platform shows keys to the wheel, these never get here.
    Keys.onUpPressed: beat.step(-1)
    Keys.onDownPressed: beat.step(1)

    // The whole screen turns the wheel, for as long as it is the current one.
    backdrop: MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.NoButton
        onWheel: event => root.beat.scroll(Qt.point(event.pixelDelta.x, event.pixelDelta.y),
                                           Qt.point(event.angleDelta.x, event.angleDelta.y),
                                           event.device.type === PointerDevice.Mouse)
    }

    OnbReveal {
        on: root.beat.headline.on

        OnbH1 {
            plain: root.beat.headline.text
            markup: root.beat.headline.markup
        }
    }
    OnbReveal {
        above: 24
        on: root.beat.wheelOn

        OnbWheel {
            rowHeight: Math.round(30 + 22 * root.room)
            name: root.beat.headline.text
            labels: root.beat.labels
            position: root.beat.position
            onSelected: row => root.beat.select(row)
            onConfirmed: root.press()
        }
    }
    OnbReveal {
        above: 24
        on: root.beat.button.on

        OnbPill {
            id: pill
            title: root.beat.button.title
            available: root.beat.button.enabled
            onClicked: root.beat.press()
        }
    }
    OnbReveal {
        visible: root.beat.whisper.text !== ""
        above: 20
        on: root.beat.whisper.on

        OnbWhisper {
            text: root.beat.whisper.text
        }
    }
}
