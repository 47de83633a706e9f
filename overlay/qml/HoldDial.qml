// The ring that fills while all keys are held, around the seconds left; around the time of night otherwise.
import QtQuick
import Dormel.Overlay
import Dormel.Ui

Item {
    id: root

    required property BlockerOverlayBridge view

    readonly property font numerals: Typeface.at(56, Font.ExtraLight)

    width: 200
    height: 200

    FrameAnimation {
        running: root.view.showing && root.view.allKeysHeld
        // Half a point of the arc is the least that is worth a frame.
        onTriggered: {
            if (Math.abs(root.view.progress - ring.progress) * Math.PI * root.width >= 0.5)
                root.view.advance();
        }
    }

    ProgressRing {
        id: ring
        // The stroke's middle runs along the dial's circle.
        anchors.fill: parent
        anchors.margins: -lineWidth / 2
        lineWidth: 4
        trackColor: Qt.rgba(1, 1, 1, 0.08)
        color: root.view.progressColor
        progress: root.view.progress
    }

    Item {
        id: seconds
        anchors.centerIn: parent
        width: 130
        height: digits.height
        visible: root.view.allKeysHeld

        TabularText {
            id: digits
            anchors.centerIn: parent
            text: root.view.secondsText
            font: root.numerals
            color: "white"
            rolls: true
        }
    }

    Item {
        id: clock
        anchors.centerIn: parent
        width: fullest.width
        height: fullest.height
        visible: !root.view.allKeysHeld

        TabularText {
            id: fullest
            text: "00:00"
            font: root.numerals
            color: "white"
            visible: false
        }
        TabularText {
            anchors.centerIn: parent
            text: root.view.clock
            font: root.numerals
            color: "white"
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.horizontalCenterOffset: font.letterSpacing / 2
            anchors.bottom: parent.bottom
            anchors.bottomMargin: -10
            text: root.view.amPm
            font: Typeface.spaced(13, Font.Light, 2)
            color: Qt.rgba(1, 1, 1, 0.35)
        }
    }
}
