// The panel behind "About Dormel".
import QtQuick
import Dormel.Ui

FocusScope {
    id: root

    required property AboutBridge view

    implicitWidth: 320
    implicitHeight: column.height + 40 + 36

    Accessible.role: Accessible.Dialog
    Accessible.name: qsTr("About Dormel")
    Accessible.description: "Dormel " + view.versionText

    WindowBackground {
        color: AppPalette.raised
    }

    Column {
        id: column
        anchors.horizontalCenter: parent.horizontalCenter
        y: 44

        AppTile {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 72
            height: 72
        }
        Gap { height: 20 }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Dormel"
            font: Typeface.at(20, Font.DemiBold)
            color: AppPalette.text
        }
        Gap { height: 6 }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.view.versionText
            font: Typeface.at(13, Font.Normal)
            color: AppPalette.secondary
        }
        Gap { height: 16 }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: qsTr("by Orvane")
            font: Typeface.at(12, Font.Normal)
            color: AppPalette.faint
        }
    }

    // Escape and Return are where one looks for the way out of a panel with nothing to decide.
    focus: true
    Keys.onEscapePressed: Window.window.close()
    Keys.onReturnPressed: Window.window.close()
    Keys.onEnterPressed: Window.window.close()
}
