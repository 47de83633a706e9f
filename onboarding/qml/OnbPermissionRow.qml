// A permission: what it is, and the button that leads to it, or the sign that it is there.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property string name
    required property bool granted
    required property string grantTitle

    signal grant

    implicitWidth: 400
    implicitHeight: 72

    Accessible.role: Accessible.Grouping
    Accessible.name: granted ? qsTr("%1, granted").arg(name) : name

    Rectangle {
        anchors.fill: parent
        radius: 16
        color: Qt.rgba(1, 1, 1, 0.045)
        border.width: 1
        border.color: Qt.rgba(1, 1, 1, 0.06)
    }
    Glyph {
        id: icon
        anchors.left: parent.left
        anchors.leftMargin: 20
        anchors.verticalCenter: parent.verticalCenter
        width: 28
        height: 28
        shape: Glyph.Lock
        lineWidth: 1.5
        color: Qt.rgba(1, 1, 1, 0.9)
    }
    Text {
        anchors.left: icon.right
        anchors.leftMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        text: root.name
        textFormat: Text.PlainText
        font: Typeface.at(16, Font.Medium)
        color: AppPalette.text
    }
    PushButton {
        anchors.right: parent.right
        anchors.rightMargin: 18
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 88
        visible: root.grantTitle !== ""
        text: root.grantTitle
        prominent: true
        onClicked: root.grant()
    }
    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.verticalCenter: parent.verticalCenter
        width: 28
        height: 28
        radius: 14
        visible: root.granted
        color: Qt.rgba(AppPalette.green.r, AppPalette.green.g, AppPalette.green.b, 0.16)

        Glyph {
            anchors.centerIn: parent
            width: 14
            height: 14
            shape: Glyph.Check
            lineWidth: 2
            color: AppPalette.green
        }
    }
}
