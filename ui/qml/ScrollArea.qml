// A page that scrolls when there is more of it than fits; only then does it give at its ends. A thin mark on the right
// shows where one is while it moves.
import QtQuick
import Dormel.Ui

ScrollFrame {
    id: root

    default property alias content: flick.flickableData
    property alias contentHeight: flick.contentHeight
    readonly property alias contentY: flick.contentY
    readonly property bool overflows: flick.contentHeight > flick.height

    flickable: flick
    gliding: glide.running
    onScrollWanted: y => {
        glide.to = y;
        glide.restart();
    }

    Flickable {
        id: flick
        anchors.fill: parent
        contentWidth: width
        flickableDirection: Flickable.VerticalFlick
        interactive: root.overflows
        boundsBehavior: Flickable.DragAndOvershootBounds
        onMovementStarted: glide.stop()
        // What the content loses in height does not leave the view beyond its end.
        onContentHeightChanged: if (!moving) returnToBounds()
    }
    EasedNumber {
        id: glide
        target: flick
        property: "contentY"
        duration: 220
        curve: Motion.easeOut
    }
    Rectangle {
        readonly property bool active: flick.moving || glide.running
        readonly property real track: root.height - root.coveredAbove - 8

        anchors.right: parent.right
        anchors.rightMargin: 4
        y: root.coveredAbove + flick.visibleArea.yPosition * track
        width: 4
        height: flick.visibleArea.heightRatio * track
        radius: 2
        color: Qt.rgba(1, 1, 1, 0.25)
        visible: root.overflows && opacity > 0
        opacity: active ? 1 : 0

        Behavior on opacity {
            NumberAnimation {
                duration: 300
            }
        }
    }
}
