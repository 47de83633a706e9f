// A screen: a stack, and a button that Return presses from anywhere on it.
import QtQuick

FocusScope {
    id: root

    property string name
    property OnbPill pill: null
    default property alias content: stack.content

    Accessible.role: Accessible.Pane
    Accessible.name: name

    Keys.onReturnPressed: event => event.accepted = press()
    Keys.onEnterPressed: event => event.accepted = press()

    function press(): bool {
        if (pill === null)
            return false;
        pill.click();
        return true;
    }

    OnbBeatStack {
        id: stack
    }
}
