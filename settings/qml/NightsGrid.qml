// The nights as a grid, a column for each week from Monday on, the newest on the right. One stop for Tab; the arrow
// keys go from day to day and from week to week.
import QtQuick
import Dormel.Settings
import Dormel.Ui

Item {
    id: root

    required property NightsBridge view
    /// Of the night that is pointed at, or that the keyboard is at; at first of the newest.
    readonly property string sentence: view.sentences[hovered >= 0 ? hovered : current]

    readonly property int count: view.sentences.length
    property int current: count - 1
    property int hovered: -1

    readonly property int labels: 32
    readonly property int pitch: Math.floor((width - labels + gap) / view.columns)
    readonly property int gap: 6
    readonly property int side: pitch - gap
    readonly property real gridX: width - view.columns * pitch + gap
    readonly property int gridY: 20

    /// Takes a key press that moves within the grid.
    function step(event) {
        const steps = {
            [Qt.Key_Left]: -7,
            [Qt.Key_Right]: 7,
            [Qt.Key_Up]: -1,
            [Qt.Key_Down]: 1,
            [Qt.Key_Home]: -current,
            [Qt.Key_End]: count - 1 - current
        };
        const by = steps[event.key];
        if (by === undefined || (event.modifiers & ~Qt.KeypadModifier) !== 0)
            return;
        event.accepted = true;
        const to = current + by;
        squares.itemAt(to >= 0 && to < count ? to : current).forceActiveFocus(Qt.TabFocusReason);
    }

    implicitHeight: gridY + 7 * pitch - gap

    Accessible.role: Accessible.Table
    Accessible.name: qsTr("The last ninety nights")

    Repeater {
        model: root.view.months

        Text {
            required property int index
            required property string modelData

            x: root.gridX + root.view.monthColumns[index] * root.pitch
            text: modelData
            font: Typeface.at(11, Font.Medium)
            color: AppPalette.faint

            Accessible.ignored: true
        }
    }
    Repeater {
        model: [qsTr("Mon"), "", qsTr("Wed"), "", qsTr("Fri"), "", qsTr("Sun")]

        Text {
            required property int index
            required property string modelData

            y: root.gridY + index * root.pitch
            height: root.side
            verticalAlignment: Text.AlignVCenter
            text: modelData
            font: Typeface.at(11, Font.Medium)
            color: AppPalette.faint

            Accessible.ignored: true
        }
    }
    Repeater {
        id: squares
        model: root.count

        Pressable {
            id: square

            required property int index
            readonly property int place: root.view.firstRow + index
            readonly property string text: root.view.sentences[index]

            x: root.gridX + Math.floor(place / 7) * root.pitch
            y: root.gridY + place % 7 * root.pitch
            width: root.side
            height: root.side
            activeFocusOnTab: index === root.current
            onActiveFocusChanged: if (activeFocus)
                root.current = index
            onHoveredChanged: {
                if (hovered)
                    root.hovered = index;
                else if (root.hovered === index)
                    root.hovered = -1;
            }

            Accessible.role: Accessible.Cell
            Accessible.name: text
            Accessible.focusable: true

            NightMark {
                anchors.fill: parent
                radius: 5
                unlocks: root.view.unlocks[square.index]
            }
            // Pointed at, it lights up a little.
            Rectangle {
                anchors.fill: parent
                anchors.margins: -2
                visible: square.hovered
                radius: 7
                color: "transparent"
                border.width: 1
                border.color: Qt.rgba(1, 1, 1, 0.5)
            }
            FocusRing {
                control: square
                anchors.margins: -3
                radiusOfControl: 4
            }
        }
    }
}
