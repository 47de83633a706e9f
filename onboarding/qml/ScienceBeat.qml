// Three facts, and where they come from.
import QtQuick
import Dormel.Onboarding
import Dormel.Ui

OnbBeat {
    id: root

    required property ScienceBridge beat

    name: beat.headline.text
    pill: pill

    OnbReveal {
        on: root.beat.headline.on

        OnbH1 {
            plain: root.beat.headline.text
        }
    }
    OnbReveal {
        above: 20
        on: root.beat.sourcesOn

        Row {
            spacing: 32

            Repeater {
                model: root.beat.wordmarks

                OnbWordmark {
                    required property string modelData
                    required property int index

                    label: modelData
                    onClicked: root.beat.open(index)
                }
            }
        }
    }
    Item {
        width: 1
        height: Math.round(16 * root.room)
    }
    Repeater {
        model: root.beat.facts

        OnbReveal {
            id: fact

            required property string modelData
            required property int index

            above: 24
            on: root.beat.factsOn[index]

            OnbFact {
                text: fact.modelData
                qualifier: root.beat.qualifiers[fact.index]
            }
        }
    }
    OnbReveal {
        above: 44
        on: root.beat.button.on

        OnbPill {
            id: pill
            title: root.beat.button.title
            quiet: root.beat.button.quiet
            available: root.beat.button.enabled
            onClicked: root.beat.press()
        }
    }
}
