import Murmeli.Report
import Murmeli.Ui

// A topic of the agenda, and how far it came.
ClaimCard {
    id: root

    required property agendaItem value

    stamps: value.stamps
    compact: true
    title: value.topic
    figure: value.status
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    sign: Symbol {
        size: 18
        name: root.value.done ? "checkmark.circle.fill" : root.value.partial ? "circle.lefthalf.filled" : "circle"
        ink: root.value.done ? Theme.inkGreen : root.value.partial ? Theme.inkBlue : Theme.text4
    }
    // qmllint enable unqualified
}
