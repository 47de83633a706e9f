// A line of a card: what it is about on the left, its control on the right.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property string title
    default property alias control: control.data

    width: parent.width
    height: 32

    Text {
        anchors.verticalCenter: parent.verticalCenter
        text: root.title
        font: Typeface.at(15, Font.Medium)
        color: AppPalette.text
    }
    Item {
        id: control
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: childrenRect.width
        height: childrenRect.height
    }
}
