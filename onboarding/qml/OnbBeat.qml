// A screen: a stack, and a button that Return presses from anywhere on it.
import QtQuick

FocusScope {
    id: root

    property string name
    property OnbPill pill: null
    readonly property real room: OnbRoom.inside(height)
    default property alias content: stack.content
    // What lies behind the stack, all over the screen.
    property alias backdrop: backdrop.data

    focus: true

    Accessible.role: Accessible.Pane
    Accessible.name: name

    // A key that is held does not run through the screens.
    Keys.onReturnPressed: event => event.accepted = !event.isAutoRepeat && press()
    Keys.onEnterPressed: event => event.accepted = !event.isAutoRepeat && press()

    function press(): bool {
        if (pill === null)
            return false;
        pill.click();
        return true;
    }

    Item {
        id: backdrop
        anchors.fill: parent
    }
    OnbBeatStack {
        id: stack
    }
}
