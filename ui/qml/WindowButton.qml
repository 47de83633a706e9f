// One of the two small round buttons in a window's upper corner. As a desktop's own, Tab passes it by.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string name
    default property alias glyph: glyph.data

    implicitWidth: 28
    implicitHeight: 28
    activeFocusOnTab: false

    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.onPressAction: click()

    Rectangle {
        anchors.centerIn: parent
        width: 24
        height: 24
        radius: 12
        color: Qt.rgba(1, 1, 1, root.down ? 0.06 : root.hovered ? 0.14 : 0.08)

        Behavior on color {
            EasedColor { duration: 120 }
        }
    }
    Item {
        id: glyph
        anchors.centerIn: parent
        width: 10
        height: 10
        opacity: root.hovered ? 0.95 : 0.6
    }
}
