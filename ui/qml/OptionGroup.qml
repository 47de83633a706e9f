// Options of which the keyboard is at one: the Pressables of a Repeater. The arrow keys, Home and End move within the
// group, and typing the beginning of an option's `text` goes to the next such one. It draws nothing.
import QtQuick

Item {
    id: root

    required property Repeater members
    // Whether moving to an option chooses it, as in a row of which one is always chosen.
    property bool choosesByMoving: false

    // Moves the keyboard to an option; one that does not exist is ignored.
    function focusOption(index: int) {
        members.itemAt(index)?.forceActiveFocus(Qt.TabFocusReason);
    }

    // Where a key leads from an option; nowhere for a key that moves nothing.
    function target(key: int, typed: string, from: int): var {
        switch (key) {
        case Qt.Key_Up:
        case Qt.Key_Left:
            return Math.max(from - 1, 0);
        case Qt.Key_Down:
        case Qt.Key_Right:
            return Math.min(from + 1, members.count - 1);
        case Qt.Key_Home:
            return 0;
        case Qt.Key_End:
            return members.count - 1;
        }
        if (typed.length !== 1 || typed <= " " || typed === "\x7f")
            return undefined;
        for (let step = 1; step <= members.count; ++step) {
            const to = (from + step) % members.count;
            if (members.itemAt(to).text.toLowerCase().startsWith(typed.toLowerCase()))
                return to;
        }
        return from;
    }

    Keys.onPressed: event => {
        let from = 0;
        while (from < members.count && !members.itemAt(from).activeFocus)
            ++from;
        if (from === members.count || (event.modifiers & ~Qt.KeypadModifier) !== 0)
            return;
        const to = target(event.key, event.text, from);
        event.accepted = to !== undefined;
        if (to === undefined || to === from)
            return;
        focusOption(to);
        if (choosesByMoving)
            members.itemAt(to).click();
    }
}
