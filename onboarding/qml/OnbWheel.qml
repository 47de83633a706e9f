// A wheel of options, all of them to be seen: the selected one is the brightest, the farthest from it the dimmest.
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

    property real rowHeight: 52

    implicitWidth: 420
    implicitHeight: labels.length * rowHeight

    Accessible.role: Accessible.List
    Accessible.name: name

    // The focus stays at the selected row.
    onPositionChanged: if (activeFocus) rows.itemAt(position).forceActiveFocus(Qt.TabFocusReason)

    Column {
        width: parent.width

        Repeater {
            id: rows
            model: root.labels.length

            OnbWheelRow {
                required property int index
                width: root.width
                height: root.rowHeight
                label: root.labels[index]
                distance: Math.abs(index - root.position)
                focus: selected
                onClicked: root.selected(index)
                onConfirmed: root.confirmed()
            }
        }
    }
}
