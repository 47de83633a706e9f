// One piece of a tabular line: a digit in a cell of fixed width, or a colon or other text as wide as it is. When a
// digit changes and `rolls` is set, the old one sinks away while the new one comes down from above.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property string text
    required property color color
    required property font font
    required property real cellWidth
    required property real colonRise
    property bool rolls: false

    readonly property bool isDigit: text.length === 1 && text >= "0" && text <= "9"
    readonly property real travel: font.pixelSize * 0.4

    // How far the roll has come, 0 to 1.
    property real roll: 1

    width: isDigit ? cellWidth : current.implicitWidth + (text === ":" ? colonRise : 0)
    height: current.implicitHeight

    // Not bound: what was shown must still be known when the text changes.
    Component.onCompleted: current.text = text
    onTextChanged: {
        previous.text = current.text;
        current.text = text;
        if (rolls && isDigit && previous.text !== "")
            rolling.restart();
    }

    Text {
        id: previous
        anchors.horizontalCenter: parent.horizontalCenter
        y: root.roll * root.travel
        opacity: 1 - root.roll
        visible: rolling.running
        color: root.color
        font: root.font
    }

    Text {
        id: current
        anchors.horizontalCenter: parent.horizontalCenter
        y: (root.roll - 1) * root.travel - (text === ":" ? root.colonRise : 0)
        opacity: root.roll
        color: root.color
        font: root.font
    }

    NumberAnimation {
        id: rolling
        target: root
        property: "roll"
        from: 0
        to: 1
        duration: 200
        easing.type: Easing.BezierSpline
        easing.bezierCurve: Motion.easeInOut
    }
}
