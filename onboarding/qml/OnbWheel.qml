// A wheel of options that rolls until the selected one stands in the middle.
//
// It is one stop of the Tab key, at the selected row. Who turns it is left to the one that placed it.
import QtQuick
import Dormel.Ui

FocusScope {
    id: root

    required property var labels
    required property int position
    property string name

    signal selected(int row)
    // Return or Enter, which a row has no use for.
    signal confirmed

    readonly property real rowHeight: 56
    // Beyond this many rows from the selected one they have faded away.
    readonly property int reach: 2

    implicitWidth: 420
    implicitHeight: (2 * reach + 1) * rowHeight

    Accessible.role: Accessible.List
    Accessible.name: name

    // The focus stays at the selected row.
    onPositionChanged: if (activeFocus) rows.itemAt(position).forceActiveFocus(Qt.TabFocusReason)

    Column {
        id: column
        width: parent.width
        y: (root.reach - root.position) * root.rowHeight

        Behavior on y {
            OnbWheelMotion {}
        }

        Repeater {
            id: rows
            model: root.labels

            OnbWheelRow {
                required property string modelData
                required property int index
                readonly property int distance: Math.abs(index - root.position)

                width: root.width
                height: root.rowHeight
                label: modelData
                selected: distance === 0
                near: distance === 1
                away: distance > root.reach
                focus: selected
                onClicked: root.selected(index)
                onConfirmed: root.confirmed()
            }
        }
    }
}
