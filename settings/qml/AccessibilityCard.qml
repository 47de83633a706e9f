// The floating card of a night without the permission to take the keyboard.
import QtQuick
import Dormel.Settings
import Dormel.Ui

Item {
    id: root

    required property AccessibilityCardBridge view

    readonly property real padding: 20

    implicitWidth: 440
    implicitHeight: content.height + 2 * padding

    Accessible.role: Accessible.Pane
    Accessible.name: title.text

    CardBackdrop {
        anchors.fill: parent
        radius: 18
    }

    Column {
        id: content
        x: root.padding
        y: Math.round((root.height - height) / 2)
        width: root.width - 2 * root.padding

        Item {
            width: parent.width
            height: 20

            Logo {
                id: mark
                width: 20
                height: 20
                color: Qt.rgba(1, 1, 1, 0.9)
            }
            Text {
                id: title
                anchors.left: mark.right
                anchors.leftMargin: 10
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                text: root.view.title
                // One line, at worst at 85 %.
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 13
                elide: Text.ElideRight
                font: Typeface.at(15, Font.DemiBold)
                color: "white"
            }
        }
        Gap { height: 12 }
        Text {
            width: parent.width
            text: root.view.text
            wrapMode: Text.Wrap
            lineHeight: 1.2
            font: Typeface.at(13, Font.Normal)
            color: Qt.rgba(1, 1, 1, 0.6)
        }
        Gap {
            visible: hint.visible
            height: 14
        }
        Text {
            id: hint
            width: parent.width
            visible: text !== ""
            text: root.view.switchHint
            wrapMode: Text.Wrap
            font: Typeface.at(12, Font.Medium)
            color: Qt.rgba(1, 1, 1, 0.45)
        }
        Gap {
            visible: hint.visible
            height: 8
        }
        Rectangle {
            width: parent.width
            height: 40
            visible: hint.visible
            radius: 10
            color: Qt.rgba(1, 1, 1, 0.06)

            AppTile {
                id: tile
                anchors.left: parent.left
                anchors.leftMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                width: 20
                height: 20
            }
            Text {
                anchors.left: tile.right
                anchors.leftMargin: 10
                anchors.verticalCenter: parent.verticalCenter
                text: "Dormel.app"
                font: Typeface.at(12, Font.Normal)
                color: Qt.rgba(1, 1, 1, 0.85)
            }
            MiniSwitch {
                anchors.right: parent.right
                anchors.rightMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                on: root.view.toggleOn
            }
        }
        Gap { height: 16 }
        PushButton {
            id: button
            width: parent.width
            height: labelHeight + 2 * 9
            visible: text !== ""
            text: root.view.button
            prominent: true
            onClicked: root.view.openSettings()
        }
        Gap {
            visible: button.visible
            height: 12
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.view.footer
            font: Typeface.at(11, Font.Normal)
            color: Qt.rgba(1, 1, 1, 0.35)
        }
    }
}
