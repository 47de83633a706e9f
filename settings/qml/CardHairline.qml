// Divides a card.
import QtQuick

Rectangle {
    width: parent.width
    height: 1
    color: Qt.rgba(1, 1, 1, 0.06)
}
