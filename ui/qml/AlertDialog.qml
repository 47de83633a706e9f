// An alert: the program's icon, a message, a text below it, and the buttons, the default one last, where the eye ends.
import QtQuick
import Dormel.Ui

FocusScope {
    id: root

    required property AlertBridge view

    implicitWidth: 412
    implicitHeight: column.height + 24 + 20

    Accessible.role: Accessible.AlertMessage
    Accessible.name: view.message
    Accessible.description: view.informativeText

    Keys.onEscapePressed: event => event.accepted = root.view.cancel()

    focus: true

    WindowBackground {
        color: AppPalette.raised
        border.width: 1
        border.color: Qt.rgba(1, 1, 1, 0.12)
    }

    Column {
        id: column
        x: 24
        y: 24
        width: parent.width - 2 * 24

        Item {
            width: parent.width
            height: Math.max(tile.height, texts.height)

            AppTile {
                id: tile
                width: 48
                height: 48
            }
            // An alert that something is wrong carries a dot on the icon.
            Rectangle {
                visible: root.view.serious
                x: tile.width - 9
                y: -3
                width: 12
                height: 12
                radius: 6
                color: AppPalette.warm
                border.width: 2
                border.color: AppPalette.raised
            }
            Column {
                id: texts
                x: tile.width + 20
                width: parent.width - x
                spacing: 8

                Text {
                    width: parent.width
                    text: root.view.message
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    font: Typeface.at(15, Font.DemiBold)
                    color: AppPalette.text
                }
                Text {
                    width: parent.width
                    visible: text !== ""
                    text: root.view.informativeText
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    lineHeight: 1.25
                    font: Typeface.at(13, Font.Normal)
                    color: AppPalette.secondary
                }
            }
        }

        Gap { height: 24 }

        // From the right: the default button first, and Tab goes on from it.
        Row {
            anchors.right: parent.right
            layoutDirection: Qt.RightToLeft
            spacing: 10

            Repeater {
                model: root.view.buttons

                PushButton {
                    required property string modelData
                    required property int index

                    text: modelData
                    prominent: index === 0
                    focus: index === 0
                    radius: 10
                    onClicked: root.view.answer(index)
                }
            }
        }
    }
}
