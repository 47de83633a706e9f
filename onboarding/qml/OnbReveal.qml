// Something that comes up out of the dark once it is on. Until then what it holds can be neither pressed nor reached;
// its room is kept for it.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property bool on
    // The space between it and what stands above it in a stack, as far as there is room for it.
    required property real above
    readonly property real gap: Math.round(above * OnbRoom.inside(Window.height))
    default property alias content: holder.data

    // How far it has come, 0 to 1.
    property real progress: on ? 1 : 0

    anchors.horizontalCenter: parent ? parent.horizontalCenter : undefined
    implicitWidth: holder.width
    implicitHeight: gap + holder.height

    Behavior on progress {
        EasedNumber { duration: Motion.duration(1100); curve: Motion.reveal }
    }

    OnbDrift {
        y: root.gap
        width: holder.width
        height: holder.height
        enabled: root.on
        visible: root.progress > 0
        opacity: root.progress
        offset: 14 * (1 - root.progress)
        blurRadius: 4 * (1 - root.progress)

        Item {
            id: holder
            width: childrenRect.width
            height: childrenRect.height
        }
    }
}
