// The mark as it draws itself: `trim` of its stroke is there, 0 to 1.
import QtQuick

DormelMark {
    property real trim: 1

    drawn: trim
}
