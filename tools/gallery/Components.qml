// Every component of the first run in every state.
import QtQuick
import Dormel.Onboarding
import Dormel.Ui

Item {
    required property QtObject view

    implicitWidth: 1180
    implicitHeight: 1300

    Rectangle {
        anchors.fill: parent
        color: AppPalette.background
    }

    component Kind: Item {
        id: kind

        required property string name
        default property alias states: row.data

        width: 1100
        height: row.height + 36

        Text {
            y: row.y + (row.height - height) / 2
            text: kind.name
            font: Typeface.at(11, Font.Medium)
            color: AppPalette.faint
        }
        Row {
            id: row
            x: 140
            y: 18
            spacing: 28
        }
        Rectangle {
            y: kind.height
            width: kind.width
            height: 1
            color: Qt.rgba(1, 1, 1, 0.05)
        }
    }

    Column {
        x: 40
        y: 22

        Kind {
            name: "OnbH1"

            OnbH1 { plain: "A headline" }
            OnbH1 { plain: "soft"; soft: true }
            OnbH1 { plain: "with emphasis"; markup: "with <i>emphasis</i>" }
        }
        Kind {
            name: "OnbSub, Kicker, Whisper"

            OnbSub { text: "A secondary line under it." }
            OnbKicker { text: "A small heading" }
            OnbWhisper { text: "A faint note." }
            OnbLine { spans: [{ "text": "A line with\u00a0", "strong": false }, { "text": "some words", "strong": true }]; plain: "" }
        }
        Kind {
            name: "OnbPill"

            OnbPill { title: "Continue" }
            OnbPill { title: "Hovered"; hovering: true }
            OnbPill { title: "Focused"; ringed: true }
            OnbPill { title: "Disabled"; available: false }
        }
        Kind {
            name: "OnbPill, quiet"

            OnbPill { title: "Continue"; quiet: true }
            OnbPill { title: "Hovered"; quiet: true; hovering: true }
            OnbPill { title: "Focused"; quiet: true; ringed: true }
            OnbPill { title: "Disabled"; quiet: true; available: false }
        }
        Kind {
            name: "OnbChip"

            OnbChip { label: "Scrolling" }
            OnbChip { label: "Hovered"; hovering: true }
            OnbChip { label: "Focused"; ringed: true }
            OnbChip { label: "Selected"; selected: true }
            OnbChip { label: "Selected, focused"; selected: true; ringed: true }
        }
        Kind {
            name: "OnbWheel"

            OnbWheel { width: 300; labels: ["11 PM", "Midnight", "1 AM", "2 AM", "3 AM", "4 AM or later"]; position: 2 }
            OnbWheel { width: 300; labels: ["10 PM", "11 PM", "Midnight", "1 AM"]; position: 0 }
            Column {
                OnbWheelRow { width: 300; height: 52; label: "Selected"; distance: 0 }
                OnbWheelRow { width: 300; height: 52; label: "Focused"; distance: 0; ringed: true }
                OnbWheelRow { width: 300; height: 52; label: "Near"; distance: 1 }
                OnbWheelRow { width: 300; height: 52; label: "Near, hovered"; distance: 1; hovering: true }
                OnbWheelRow { width: 300; height: 52; label: "Far"; distance: 2 }
                OnbWheelRow { width: 300; height: 52; label: "Farthest"; distance: 5 }
            }
        }
        Kind {
            name: "OnbKeycap"

            OnbKeycap { label: "⇧" }
            OnbKeycap { label: "⌘" }
            OnbKeycap { label: "D" }
            OnbKeycap { label: "⇧"; held: true }
            OnbKeycap { label: "⌘"; held: true }
            OnbKeycap { label: "D"; held: true }
            OnbBackButton {}
            OnbBackButton { hovering: true }
            OnbBackButton { ringed: true }
        }
        Kind {
            name: "OnbRing"

            OnbRing { width: 96; height: 96; progress: 0 }
            OnbRing { width: 96; height: 96; progress: 0.01 }
            OnbRing { width: 96; height: 96; progress: 0.4 }
            OnbRing { width: 96; height: 96; progress: 1 }
        }
        Kind {
            name: "OnbLink, OnbWordmark"

            OnbLink { title: "A link" }
            OnbLink { title: "Hovered"; hovering: true }
            OnbLink { title: "Focused"; ringed: true; size: 17 }
            OnbWordmark { label: "STANFORD" }
            OnbWordmark { label: "HOVERED"; hovering: true }
            OnbWordmark { label: "FOCUSED"; ringed: true }
        }
        Kind {
            name: "DormelMark, Draw"

            DormelMark { width: 96; height: 96 }
            DormelMarkDraw { width: 96; height: 96; trim: 0.05 }
            DormelMarkDraw { width: 96; height: 96; trim: 0.4 }
            DormelMarkDraw { width: 96; height: 96; trim: 0.8 }
            DormelMark { width: 24; height: 24 }
            DormelMark { width: 16; height: 16 }
        }
        Kind {
            name: "Permission"

            OnbPermissionRow { width: 400; name: "Accessibility"; granted: false; grantTitle: "Grant" }
            OnbPermissionRow { width: 400; name: "Accessibility"; granted: true; grantTitle: "" }
        }
    }
}
