import QtQuick
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// What somebody promised to do, by when, and what makes it done.
ClaimCard {
    id: root

    required property commitment value
    required property quoteFinding finding

    stamps: value.stamps
    stampsBelow: true
    title: value.who
    lead: value.due
    body: value.what
    bodyType: Theme.body
    bodyInk: Theme.text1
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    badge: Pill {
        type: Theme.badge
        ink: root.value.firm ? Theme.inkGreen : Theme.text2
        color: root.value.firm ? Theme.tint(Theme.green) : Theme.fill
        text: root.value.firm ? L.t("report.firm") : L.t("report.soft")
    }
    // qmllint enable unqualified

    SelectableText {
        width: root.width
        topPadding: 4
        visible: text.length > 0
        type: Theme.sub
        font.italic: true
        color: Theme.text2
        text: root.value.quote
    }
    QuoteLine {
        width: root.width
        finding: root.finding
        loader: root.loader
    }
    SelectableText {
        width: root.width
        topPadding: 4
        visible: root.value.definitionOfDone.length > 0
        type: Theme.sub
        color: Theme.text2
        text: L.t("report.dod", root.value.definitionOfDone)
    }
}
