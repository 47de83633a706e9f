// A screen: the stack of its elements, and a button that Return presses from anywhere on it.
import QtQuick
import Dormel.Onboarding

FocusScope {
    id: root

    required property BeatBridge beat

    Accessible.role: Accessible.Pane
    Accessible.name: beat.name

    // A key that is held does not run through the screens.
    Keys.onReturnPressed: event => event.accepted = !event.isAutoRepeat && beat.pressButton()
    Keys.onEnterPressed: event => event.accepted = !event.isAutoRepeat && beat.pressButton()
    // Where the platform shows keys to the wheel, these never get here.
    Keys.onUpPressed: event => event.accepted = beat.step(-1)
    Keys.onDownPressed: event => event.accepted = beat.step(1)

    // The whole screen turns the wheel, for as long as it is the current one.
    MouseArea {
        anchors.fill: parent
        enabled: root.beat.turns
        acceptedButtons: Qt.NoButton
        onWheel: event => root.beat.scroll(Qt.point(event.pixelDelta.x, event.pixelDelta.y),
                                           Qt.point(event.angleDelta.x, event.angleDelta.y),
                                           event.device.type === PointerDevice.Mouse)
    }
    OnbBeatStack {
        Repeater {
            model: root.beat

            OnbElement {
                beat: root.beat
                room: OnbRoom.inside(root.height)
            }
        }
    }
}
