// The name of a source, which leads to it.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string label
    property real size: 12
    property real tracking: 2.4
    property bool hovering: hovered
    property bool ringed: focusVisible

    // The spacing after the last letter is no part of the word.
    implicitWidth: name.implicitWidth - tracking
    implicitHeight: name.implicitHeight + 8

    Accessible.role: Accessible.Link
    Accessible.name: label
    Accessible.focusable: true
    Accessible.onPressAction: click()

    Text {
        id: name
        y: 4
        text: root.label
        textFormat: Text.PlainText
        font: Typeface.spaced(root.size, Font.DemiBold, root.tracking)
        color: Qt.rgba(1, 1, 1, root.hovering || root.ringed ? 0.9 : 0.5)

        Behavior on color {
            EasedColor { duration: 250 }
        }
    }
    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
    FocusRing {
        control: root
        anchors.margins: -6
        visible: root.ringed
        radiusOfControl: 4
    }
}
