// A dot that says how things are, what it speaks of, and a line of words; room for one button on the right.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property string title
    required property string text
    required property color dot
    default property alias control: control.data

    readonly property Item shownControl: control.visibleChildren.length > 0 ? control.visibleChildren[0] : null

    implicitHeight: Math.max(words.height, control.height)
    width: parent ? parent.width : 0

    Accessible.role: Accessible.StaticText
    Accessible.name: title + ". " + text

    Rectangle {
        x: 2
        y: heading.y + (heading.height - height) / 2
        width: 8
        height: 8
        radius: 4
        color: root.dot

        Behavior on color {
            ColorAnimation {
                duration: 300
            }
        }
    }
    Column {
        id: words
        x: 24
        width: parent.width - x - (root.shownControl ? control.width + 16 : 0)
        spacing: 4

        Text {
            id: heading
            width: parent.width
            text: root.title
            font: Typeface.at(15, Font.Medium)
            color: AppPalette.text
            elide: Text.ElideRight
        }
        Text {
            width: parent.width
            text: root.text
            wrapMode: Text.Wrap
            font: Typeface.at(13, Font.Normal)
            color: AppPalette.secondary
        }
    }
    Item {
        id: control
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: root.shownControl ? root.shownControl.width : 0
        height: root.shownControl ? root.shownControl.height : 0
    }
}
