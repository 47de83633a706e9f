// A screen that, once it is gone, goes up like vapour. From that moment nothing in it can be pressed or reached.
import QtQuick
import Dormel.Ui

OnbDrift {
    id: root

    property bool gone: false
    // How far it has gone, 0 to 1.
    property real progress: gone ? 1 : 0

    signal evaporated

    enabled: !gone
    opacity: 1 - progress
    offset: -26 * progress
    blurRadius: 7 * progress

    Behavior on progress {
        EasedNumber {
            duration: Motion.duration(850)
            curve: [0.4, 0, 0.9, 1, 1, 1]
            onRunningChanged: if (!running && root.progress === 1) root.evaporated()
        }
    }
}
