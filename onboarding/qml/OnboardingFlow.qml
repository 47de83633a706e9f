// The first run: the screen that is leaving, over it the current one, and the way back.
import QtQuick
import Dormel.Onboarding
import Dormel.Ui

FocusScope {
    id: root

    required property OnboardingBridge view

    implicitWidth: view.areaWidth
    implicitHeight: view.areaHeight

    Accessible.role: Accessible.Pane
    Accessible.name: "Dormel"

    focus: true

    WindowBackground {}

    Repeater {
        model: root.view.beats

        OnbEvaporate {
            id: leaf

            required property var model

            width: root.width
            height: root.height
            gone: model.gone
            onEvaporated: root.view.evaporated(leaf.model.beat)

            OnbBeat {
                anchors.fill: parent
                beat: leaf.model.beat
                // Keys that no control takes go to the screen.
                focus: !leaf.gone
                Component.onCompleted: forceActiveFocus(Qt.OtherFocusReason)
            }
        }
    }

    OnbBackButton {
        x: 28
        y: root.height - height - 28
        enabled: root.view.canGoBack
        visible: opacity > 0
        opacity: root.view.canGoBack ? 1 : 0
        onClicked: root.view.goBack()

        Behavior on opacity {
            EasedNumber { duration: Motion.duration(850) }
        }
    }
}
