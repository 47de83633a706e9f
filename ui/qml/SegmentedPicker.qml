// A choice between a few, all of them in sight. One stop for Tab; the arrow keys choose.
import QtQuick
import Dormel.Ui

OptionGroup {
    id: root

    required property string name
    required property list<string> options
    required property int current

    signal chosen(int index)

    members: segments
    choosesByMoving: true
    implicitWidth: row.width + 4
    implicitHeight: 32

    Accessible.role: Accessible.Grouping
    Accessible.name: name

    Rectangle {
        anchors.fill: parent
        radius: 10
        color: AppPalette.fill
    }
    Rectangle {
        x: 2 + root.current * width
        y: 2
        width: row.width / root.options.length
        height: parent.height - 4
        radius: 8
        color: Qt.rgba(1, 1, 1, 0.14)

        Behavior on x {
            EasedNumber { duration: 180 }
        }
    }
    Row {
        id: row
        x: 2
        y: 2

        Repeater {
            id: segments
            model: root.options

            Pressable {
                id: segment

                required property string modelData
                required property int index
                readonly property string text: modelData
                readonly property bool chosen: index === root.current

                width: 84
                height: root.height - 4
                activeFocusOnTab: chosen
                onClicked: root.chosen(index)

                Accessible.role: Accessible.RadioButton
                Accessible.name: text
                Accessible.focusable: true
                Accessible.checkable: true
                Accessible.checked: chosen
                Accessible.onPressAction: click()
                Accessible.onToggleAction: click()

                FocusRing {
                    control: segment
                    anchors.margins: -2
                    radiusOfControl: 6
                }
                Text {
                    anchors.centerIn: parent
                    text: segment.text
                    font: Typeface.at(13, Font.Medium)
                    color: Qt.rgba(1, 1, 1, segment.chosen ? 0.95 : segment.hovered ? 0.8 : 0.55)
                }
            }
        }
    }
}
