// A block of the scripted scene: it waits a little below its place, is there while its phase is the current one, and
// has gone a little above it afterwards.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property int phase
    required property int currentPhase
    default property alias content: column.data

    // Where it stands: 1 below, 0 in its place, -1 above.
    property real place: Math.sign(phase - currentPhase)

    anchors.fill: parent
    visible: opacity > 0
    opacity: 1 - Math.abs(place)

    Behavior on place {
        EasedNumber { duration: Motion.duration(1000); curve: Motion.reveal }
    }

    OnbDrift {
        anchors.fill: parent
        offset: root.place > 0 ? 12 * root.place : 16 * root.place

        Column {
            id: column
            width: parent.width
            y: Math.round((parent.height - height) / 2)
        }
    }
}
