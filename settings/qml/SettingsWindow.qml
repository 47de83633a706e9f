// The settings, from the state of the lock to the way to uninstall it.
import QtQuick
import Dormel.Settings
import Dormel.Ui

Item {
    id: root

    required property SettingsBridge view

    implicitWidth: 460
    implicitHeight: 660

    Accessible.role: Accessible.Pane
    Accessible.name: "Dormel"

    WindowBackground {}

    ScrollArea {
        id: scroll
        // What has scrolled into the window's own strip is gone: there the window is dragged, and nothing unseen pressed.
        anchors.fill: parent
        anchors.topMargin: 36
        clip: true
        focus: true
        coveredAbove: 8
        contentHeight: page.height

        Column {
            id: page
            x: 24
            width: scroll.width - 2 * x
            topPadding: 4
            bottomPadding: 20
            spacing: 22

            Column {
                anchors.horizontalCenter: parent.horizontalCenter
                spacing: 12
                bottomPadding: 4

                // It draws itself when the window opens.
                Logo {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: 40
                    height: 40
                    color: Qt.rgba(1, 1, 1, 0.9)
                    drawn: root.view.showing ? 1 : 0

                    Behavior on drawn {
                        EasedNumber { duration: Motion.duration(1400) }
                    }
                }
                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    // The spacing after the last letter is no part of the word.
                    anchors.horizontalCenterOffset: font.letterSpacing / 2
                    text: "DORMEL"
                    font: Typeface.spaced(13, Font.DemiBold, 6)
                    color: Qt.rgba(1, 1, 1, 0.45)
                }
            }

            SectionCard {
                width: parent.width
                title: "Dormel"

                StateRow {
                    title: root.view.statusTitle
                    text: root.view.statusText
                    dot: root.view.lockEnabled ? AppPalette.green : AppPalette.warm

                    ToggleSwitch {
                        name: "Dormel"
                        checked: root.view.lockEnabled
                        onToggled: on => root.view.setLockEnabled(on)
                    }
                }
                CardNote {
                    x: 24
                    width: parent.width - x
                    visible: root.view.lockedIn
                    text: qsTr("Can't turn Dormel off during blocking hours.")
                }
                CardNote {
                    x: 24
                    width: parent.width - x
                    visible: text !== ""
                    text: root.view.switchUnsaved
                }
            }
            SectionCard {
                width: parent.width
                title: qsTr("Schedule")

                CardLine {
                    title: qsTr("Lock at")

                    MenuPicker {
                        name: qsTr("Lock at")
                        ground: root
                        enabled: !root.view.lockedIn
                        options: root.view.startHours
                        current: root.view.startHour
                        onChosen: index => root.view.chooseStartHour(index)
                    }
                }
                CardHairline {}
                CardText {
                    text: root.view.scheduleText
                }
                CardNote {
                    visible: root.view.lockedIn
                    text: qsTr("Can't change the schedule during blocking hours.")
                }
                CardNote {
                    visible: text !== ""
                    text: root.view.hourUnsaved
                }
            }
            SectionCard {
                width: parent.width
                title: qsTr("Clock")

                CardLine {
                    title: qsTr("Format")

                    SegmentedPicker {
                        name: qsTr("Format")
                        options: [qsTr("24-hour"), qsTr("12-hour")]
                        current: root.view.use24Hour ? 0 : 1
                        onChosen: index => root.view.setUse24Hour(index === 0)
                    }
                }
                CardNote {
                    visible: text !== ""
                    text: root.view.clockUnsaved
                }
            }
            SectionCard {
                width: parent.width
                title: qsTr("Permissions")

                StateRow {
                    title: root.view.permissionName
                    text: root.view.permissionText
                    dot: root.view.trusted ? AppPalette.green : AppPalette.warm
                }
                PushButton {
                    id: openSettings
                    x: 24
                    visible: text !== ""
                    text: root.view.permissionButton
                    onClicked: root.view.openAccessibilitySettings(openSettings)
                }
            }
            SectionCard {
                width: parent.width
                title: qsTr("Updates")

                Column {
                    width: parent.width
                    spacing: 4

                    CardLine {
                        visible: root.view.canUpdate
                        title: qsTr("Install updates automatically")
                        height: 24

                        ToggleSwitch {
                            name: qsTr("Install updates automatically")
                            checked: root.view.autoUpdates
                            onToggled: on => root.view.setAutoUpdates(on)
                        }
                    }
                    CardText {
                        text: root.view.autoUpdatesText
                    }
                }
                CardHairline {
                    visible: root.view.canUpdate
                }
                PushButton {
                    visible: root.view.canUpdate
                    text: qsTr("Check for Updates…")
                    enabled: root.view.canCheckForUpdates
                    onClicked: root.view.checkForUpdates()
                }
                CardText {
                    visible: text !== ""
                    text: root.view.updateStatus
                    font: Typeface.at(12, Font.Normal)
                }
            }
            SectionCard {
                width: parent.width
                title: qsTr("About")

                Item {
                    width: parent.width
                    height: 44

                    AppTile {
                        id: tile
                        width: 44
                        height: 44
                    }
                    Column {
                        anchors.left: tile.right
                        anchors.leftMargin: 14
                        anchors.verticalCenter: parent.verticalCenter
                        spacing: 4

                        PlainText {
                            text: "Dormel " + root.view.versionText
                            font: Typeface.at(15, Font.Medium)
                            color: AppPalette.text
                        }
                        CardText {
                            width: implicitWidth
                            text: qsTr("by Orvane")
                        }
                    }
                }
                CardHairline {}
                Row {
                    x: -12
                    height: 24
                    spacing: 4

                    PlainButton {
                        text: qsTr("Rehearse the lock")
                        onClicked: root.view.testNow()
                    }
                    PlainButton {
                        visible: root.view.canPreviewOnboarding
                        text: qsTr("Replay the introduction")
                        onClicked: root.view.previewOnboarding()
                    }
                    PlainButton {
                        visible: root.view.canShowNights
                        text: qsTr("Your nights")
                        onClicked: root.view.showNights()
                    }
                }
            }
            PlainButton {
                anchors.horizontalCenter: parent.horizontalCenter
                // Locked in, there is no way out through here.
                visible: !root.view.lockedIn
                text: qsTr("Uninstall Dormel")
                onClicked: root.view.uninstall()
            }
        }
    }

    // What scrolls away fades before it reaches the window's buttons, and what is still to come at the lower edge.
    Fade {
        height: 60
        opacity: Math.min(1, scroll.contentY / 24)
        covering: 0.6
    }
    Fade {
        anchors.bottom: parent.bottom
        height: 48
        rotation: 180
        opacity: Math.max(0, Math.min(1, (scroll.contentHeight - scroll.height - scroll.contentY) / 24))
        covering: 0.1
    }

    component Fade: WindowBackground {
        id: fade

        // How far from the edge it hides what is below.
        required property real covering

        anchors.fill: undefined
        width: parent.width
        visible: opacity > 0
        gradient: Gradient {
            GradientStop {
                position: 0
                color: AppPalette.background
            }
            GradientStop {
                position: fade.covering
                color: Qt.alpha(AppPalette.background, 0.98)
            }
            GradientStop {
                position: 1
                color: Qt.alpha(AppPalette.background, 0)
            }
        }
    }
}
