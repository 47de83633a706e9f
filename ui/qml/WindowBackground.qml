// What a window of the program's stands on: its colour, and corners cut as far as the desktop lets a window have them.
import QtQuick
import Dormel.Ui

Rectangle {
    readonly property bool rounded: Window.window && Window.window.rounded === true

    anchors.fill: parent
    radius: rounded ? 14 : 0
    color: AppPalette.background
}
