// A button that is nothing but its words.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string title
    property real size: 13
    property bool hovering: hovered
    property bool ringed: focusVisible

    implicitWidth: label.implicitWidth
    implicitHeight: label.implicitHeight

    Accessible.role: Accessible.Button
    Accessible.name: title
    Accessible.focusable: true
    Accessible.onPressAction: click()

    Text {
        id: label
        text: root.title
        textFormat: Text.PlainText
        font: Typeface.at(root.size, Font.Medium)
        color: Qt.rgba(1, 1, 1, root.hovering || root.ringed ? 0.9 : 0.5)

        Behavior on color {
            EasedColor { duration: 250 }
        }
    }
    FocusRing {
        control: root
        anchors.margins: -6
        visible: root.ringed
        radiusOfControl: 4
    }
}
