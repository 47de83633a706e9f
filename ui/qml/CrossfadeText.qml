// A line of text that dissolves into the next one.
import QtQuick
import Dormel.Ui

Item {
    id: root

    required property string text
    required property color color
    required property font font
    property int duration: 300

    implicitWidth: current.implicitWidth
    implicitHeight: current.implicitHeight

    // Not bound: what was shown must still be known when the text changes, and a colour that comes with a new text
    // is the new text's alone.
    property bool complete: false
    Component.onCompleted: {
        current.text = text;
        current.color = color;
        complete = true;
    }
    onTextChanged: {
        if (!complete)
            return;
        // A line that gives way before it could be read was never there: what is fading already fades on.
        if (current.opacity >= previous.opacity) {
            previous.text = current.text;
            previous.color = current.color;
            previous.opacity = current.opacity;
        }
        fadeOut.from = previous.opacity;
        current.opacity = 0;
        current.text = text;
        dissolve.restart();
    }
    onColorChanged: if (complete) current.color = color

    Text {
        id: previous
        anchors.horizontalCenter: parent.horizontalCenter
        font: root.font
        opacity: 0
    }

    Text {
        id: current
        anchors.horizontalCenter: parent.horizontalCenter
        font: root.font
    }

    ParallelAnimation {
        id: dissolve

        NumberAnimation {
            id: fadeOut
            target: previous
            property: "opacity"
            to: 0
            duration: root.duration
            easing.type: Easing.BezierSpline
            easing.bezierCurve: Motion.easeInOut
        }
        NumberAnimation {
            target: current
            property: "opacity"
            from: 0
            to: 1
            duration: root.duration
            easing.type: Easing.BezierSpline
            easing.bezierCurve: Motion.easeInOut
        }
    }
}
