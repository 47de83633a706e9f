// The square of one night: light when it was kept, dimmer the more often it was opened, an outline without a record.
import QtQuick

Rectangle {
    /// -1: no lock is recorded
    required property int unlocks

    color: Qt.rgba(1, 1, 1, unlocks < 0 ? 0 : [0.88, 0.42, 0.30, 0.20][Math.min(unlocks, 3)])
    border.width: unlocks < 0 ? 1 : 0
    border.color: Qt.rgba(1, 1, 1, 0.12)
}
