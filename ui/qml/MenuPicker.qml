// A choice from a list that opens over the scene, the chosen option above the picker's own text. Space, Return, the
// vertical arrows and a click open it; arrows and typing move in it, Return chooses, Escape and a click beside it close.
import QtQuick
import Dormel.Ui

Pressable {
    id: root

    required property string name
    required property list<string> options
    required property int current
    // What the list opens in: fills the window.
    required property Item ground
    property bool open: false

    signal chosen(int index)

    function close() {
        forceActiveFocus(Qt.PopupFocusReason);
        open = false;
    }

    implicitWidth: 128
    implicitHeight: 32
    opacity: enabled ? 1 : 0.4

    Accessible.role: Accessible.ComboBox
    Accessible.name: name
    Accessible.description: options[current] ?? ""
    Accessible.focusable: true
    Accessible.onPressAction: click()

    onClicked: open = true
    onEnabledChanged: if (!enabled) open = false
    Keys.onUpPressed: open = true
    Keys.onDownPressed: open = true

    Rectangle {
        anchors.fill: parent
        radius: 10
        color: Qt.rgba(1, 1, 1, root.down ? 0.06 : root.hovered ? 0.13 : 0.08)
    }
    FocusRing {
        control: root
        radiusOfControl: 10
    }
    Text {
        x: 14
        anchors.verticalCenter: parent.verticalCenter
        text: root.options[root.current] ?? ""
        font: Typeface.at(13, Font.Medium)
        color: AppPalette.text
    }
    // Up and down.
    Item {
        anchors.right: parent.right
        anchors.rightMargin: 13
        anchors.verticalCenter: parent.verticalCenter
        width: 8
        height: 12
        opacity: 0.6

        Repeater {
            model: [Qt.point(0, 2.75), Qt.point(3.5, 2.75), Qt.point(0, 8.25), Qt.point(3.5, 8.25)]

            Rectangle {
                required property point modelData
                required property int index

                x: modelData.x
                y: modelData.y
                width: 5.2
                height: 1.4
                radius: 0.7
                rotation: index === 0 || index === 3 ? -42 : 42
                antialiasing: true
                color: "white"
            }
        }
    }

    Loader {
        parent: root.ground
        anchors.fill: parent
        active: root.open
        z: 1

        sourceComponent: MouseArea {
            id: list

            readonly property point place: root.mapToItem(root.ground, 0, 0)

            acceptedButtons: Qt.AllButtons
            hoverEnabled: true
            onPressed: root.close()
            onWheel: wheel => wheel.accepted = true
            Component.onCompleted: group.focusOption(root.current)

            Keys.onEscapePressed: root.close()
            Keys.onTabPressed: root.close()
            Keys.onBacktabPressed: root.close()

            // The shadow: a blur of six steps.
            Repeater {
                model: [18, 14, 10, 7, 4, 2]

                Rectangle {
                    required property int modelData

                    anchors.fill: panel
                    anchors.margins: -modelData
                    anchors.topMargin: 6 - modelData
                    anchors.bottomMargin: -6 - modelData
                    radius: panel.radius + modelData
                    color: Qt.rgba(0, 0, 0, 0.11)
                }
            }
            Rectangle {
                id: panel

                readonly property real wanted: list.place.y + (root.height - 32) / 2 - root.current * 32 - 6

                // The chosen option's text stands where the picker's own does.
                x: list.place.x + root.width - width
                y: Math.round(Math.max(8, Math.min(wanted, list.height - height - 8)))
                width: root.width + 22
                height: group.height + 12
                radius: 14
                color: "#1f1f22"
                border.width: 1
                border.color: Qt.rgba(1, 1, 1, 0.12)

                OptionGroup {
                    id: group
                    members: entries
                    x: 6
                    y: 6
                    width: parent.width - 12
                    height: column.height

                    Accessible.role: Accessible.List
                    Accessible.name: root.name

                    Column {
                        id: column
                        width: parent.width

                        Repeater {
                            id: entries
                            model: root.options

                            Pressable {
                                id: option

                                required property string modelData
                                required property int index
                                readonly property string text: modelData

                                width: column.width
                                height: 32
                                activeFocusOnTab: false
                                onHoveredChanged: if (hovered) group.focusOption(index)
                                onClicked: {
                                    root.close();
                                    root.chosen(index);
                                }

                                Accessible.role: Accessible.ListItem
                                Accessible.name: text
                                Accessible.focusable: true
                                Accessible.selectable: true
                                Accessible.selected: index === root.current
                                Accessible.onPressAction: click()

                                Rectangle {
                                    anchors.fill: parent
                                    radius: 8
                                    visible: option.activeFocus
                                    color: Qt.rgba(1, 1, 1, option.down ? 0.07 : 0.11)
                                }
                                Text {
                                    x: 9
                                    anchors.verticalCenter: parent.verticalCenter
                                    visible: option.index === root.current
                                    text: "✓"
                                    font: Typeface.at(12, Font.DemiBold)
                                    color: AppPalette.text
                                }
                                Text {
                                    x: 30
                                    anchors.verticalCenter: parent.verticalCenter
                                    text: option.text
                                    font: Typeface.at(13, Font.Medium)
                                    color: Qt.rgba(1, 1, 1, option.activeFocus ? 1 : 0.8)
                                }
                            }
                        }
                    }
                }
            }
        }
    }
}
