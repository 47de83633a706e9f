// Room between two things in a column.
import QtQuick

Item {
    implicitWidth: 1
}
