// How roomy a screen may be in a window that a small desktop made lower than it should be: 1 is as it should be. What
// stands between the elements shrinks by it, and so do the rows of a wheel. Nothing scrolls: the scroll wheel turns the
// wheels, and a button that is out of sight would be missed. Nothing is scaled either: in the software scene graph that
// shows seams.
pragma Singleton
import QtQuick

QtObject {
    readonly property real enough: 540
    readonly property real least: 300

    function inside(height: real): real {
        return Math.max(0.35, Math.min(1, (height - least) / (enough - least)));
    }
}
