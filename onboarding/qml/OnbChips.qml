// Chips in rows of three. The arrow keys go from one to the next.
import QtQuick

Grid {
    id: root

    required property var labels
    // Which of them are.
    required property var chosen
    required property real chipWidth
    // One of them is the answer.
    property bool exclusive: false

    signal pressed(int chip)

    function moveFocus(from: int, by: int): bool {
        const next = chips.itemAt(from + by);
        next?.forceActiveFocus(Qt.TabFocusReason);
        return next !== null;
    }

    columns: 3
    columnSpacing: 12
    rowSpacing: 12

    Repeater {
        id: chips
        model: root.labels.length

        OnbChip {
            required property int index

            width: root.chipWidth
            label: root.labels[index]
            selected: root.chosen.includes(index)
            exclusive: root.exclusive
            onClicked: root.pressed(index)

            Keys.onLeftPressed: event => event.accepted = root.moveFocus(index, -1)
            Keys.onRightPressed: event => event.accepted = root.moveFocus(index, 1)
            Keys.onUpPressed: event => event.accepted = root.moveFocus(index, -root.columns)
            Keys.onDownPressed: event => event.accepted = root.moveFocus(index, root.columns)
        }
    }
}
