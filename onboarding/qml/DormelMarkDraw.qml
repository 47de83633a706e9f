// The mark as it draws itself: `trim` of its stroke is there, 0 to 1.
import QtQuick
import Dormel.Ui

DormelMark {
    id: root

    property real trim: 0
    // It begins to, in a moment.
    property bool drawing: false

    drawn: trim

    SequentialAnimation {
        running: root.drawing

        PauseAnimation {
            duration: 700
        }
        EasedNumber {
            target: root
            property: "trim"
            to: 1
            duration: 2400
            curve: [0.5, 0, 0.2, 1, 1, 1]
        }
    }
}
