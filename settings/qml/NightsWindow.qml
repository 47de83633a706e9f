// "Your nights": three figures, a square for each of the last ninety nights, and what the chosen one has to tell.
import QtQuick
import Dormel.Settings
import Dormel.Ui

FocusScope {
    id: root

    required property NightsBridge view

    implicitWidth: 460
    implicitHeight: 552

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Your nights")

    // The arrow keys work at once; nothing wears a ring before they are used.
    focus: true
    Keys.forwardTo: [page, scroll]
    Keys.onEscapePressed: Window.window.close()

    WindowBackground {}

    // On a small screen the squares scroll; what they tell stays in view.
    ScrollArea {
        id: scroll
        y: 32
        width: parent.width
        height: Math.min(contentHeight, parent.height - y - words.height)
        clip: overflows
        contentHeight: page.height

        Column {
            id: page
            x: 24
            width: scroll.width - 2 * x

            Keys.onPressed: event => grid.step(event)

            Text {
                x: 4
                text: qsTr("Your nights")
                font: Typeface.at(20, Font.DemiBold)
                color: AppPalette.text

                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            Item {
                width: 1
                height: 20
            }
            Row {
                x: 4
                width: parent.width - x

                Repeater {
                    model: root.view.figures

                    Column {
                        id: figure

                        required property int index
                        required property string modelData
                        readonly property string text: root.view.figureTexts[index]

                        width: 136

                        Accessible.role: Accessible.StaticText
                        Accessible.name: modelData + " " + text.replace("\n", " ")

                        Text {
                            text: figure.modelData
                            font: Typeface.at(40, Font.ExtraLight)
                            color: AppPalette.text
                        }
                        Text {
                            text: figure.text
                            lineHeight: 1.15
                            font: Typeface.at(12, Font.Normal)
                            color: AppPalette.secondary
                        }
                    }
                }
            }
            Item {
                width: 1
                height: 20
            }
            Rectangle {
                width: parent.width
                height: grid.height + 2 * 16
                radius: 16
                color: Qt.rgba(1, 1, 1, 0.045)
                border.width: 1
                border.color: Qt.rgba(1, 1, 1, 0.06)

                NightsGrid {
                    id: grid
                    x: 16
                    y: 16
                    width: parent.width - 2 * 16
                    view: root.view
                }
            }
        }
    }
    Column {
        id: words
        x: 24
        y: scroll.y + scroll.height
        width: parent.width - 2 * x
        topPadding: 16
        bottomPadding: 20

        // Room for a night that was opened often, so that nothing moves.
        Text {
            x: 4
            width: parent.width - 2 * x
            height: 56
            text: grid.sentence
            wrapMode: Text.Wrap
            lineHeight: 1.2
            font: Typeface.at(13, Font.Normal)
            color: AppPalette.text
            elide: Text.ElideRight

            Accessible.ignored: true
        }
        Row {
            x: 4
            spacing: 16

            Repeater {
                model: [
                    {
                        "unlocks": 0,
                        "text": qsTr("kept")
                    },
                    {
                        "unlocks": 1,
                        "text": qsTr("opened")
                    },
                    {
                        "unlocks": 3,
                        "text": qsTr("opened often")
                    },
                    {
                        "unlocks": -1,
                        "text": qsTr("no lock recorded")
                    }
                ]

                Row {
                    required property var modelData

                    spacing: 6

                    NightMark {
                        anchors.verticalCenter: parent.verticalCenter
                        width: 10
                        height: 10
                        radius: 3
                        unlocks: parent.modelData.unlocks
                    }
                    Text {
                        text: parent.modelData.text
                        font: Typeface.at(12, Font.Normal)
                        color: AppPalette.secondary
                    }
                }
            }
        }
        Text {
            x: 4
            width: parent.width - 2 * x
            topPadding: 10
            visible: text !== ""
            text: root.view.note
            font: Typeface.at(12, Font.Normal)
            color: AppPalette.secondary

            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
