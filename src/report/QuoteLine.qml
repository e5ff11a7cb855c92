import QtQuick
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// What a comparison of the quotation above with the transcript has shown.
Column {
    id: root

    required property quoteFinding finding
    required property ReportLoader loader
    readonly property bool known: finding.kind !== 0
    readonly property var looks: [
        { symbol: "", ink: Theme.text2, key: "" },
        { symbol: "checkmark.circle.fill", ink: Theme.inkGreen, key: "quote.exact" },
        { symbol: "circle.lefthalf.filled", ink: Theme.inkBlue, key: "quote.similar" },
        { symbol: "magnifyingglass", ink: Theme.inkPink, key: "quote.elsewhere" },
        { symbol: "exclamationmark.triangle", ink: Theme.inkRed, key: "quote.none" }
    ]
    readonly property var look: looks[finding.kind]

    visible: known
    opacity: known ? 1 : 0
    topPadding: 8
    spacing: 6

    Behavior on opacity { NumberAnimation { duration: Theme.base; easing.type: Easing.OutCubic } }

    Item {
        width: parent.width
        height: words.height
        Symbol {
            y: 2
            size: 14
            name: root.look.symbol
            ink: root.look.ink
        }
        Label {
            id: words
            x: 20
            width: Math.min(implicitWidth, parent.width - 20 - (chip.active ? chip.width + 6 : 0))
            type: Theme.sub
            color: Theme.text2
            wrapMode: Text.Wrap
            text: root.known ? L.t(root.look.key, "").trim() : ""
            Accessible.name: root.known ? L.t(root.look.key, root.finding.stamp) : ""
        }
        // Loaders take no bound components yet.
        // qmllint disable unqualified
        Loader {
            id: chip
            anchors { left: words.right; leftMargin: 6; verticalCenter: words.verticalCenter }
            active: root.finding.kind === 3
            sourceComponent: StampChip {
                stamp: root.finding.stamp
                loader: root.loader
                travels: true
            }
        }
        // qmllint enable unqualified
    }
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    Loader {
        width: parent.width
        active: root.finding.kind === 2
        visible: active
        sourceComponent: Rectangle {
            implicitHeight: line.height + 16
            radius: Theme.rSmall
            color: Theme.tintSoft(Theme.violet)
            Accessible.role: Accessible.StaticText
            Accessible.name: root.loader.spokenDifference(root.finding, L.language)
            Rectangle {
                width: 3
                height: parent.height
                color: Theme.violet
            }
            DifferenceText {
                id: line
                x: 13
                y: 8
                width: parent.width - 23
                type: Theme.quotation
                lead: root.finding.lead
                pieces: root.finding.pieces
                Accessible.ignored: true
            }
        }
    }
    // qmllint enable unqualified
    Label {
        width: parent.width
        visible: root.finding.speaker.length > 0
        leftPadding: 20
        type: Theme.sub
        color: Theme.inkPink
        wrapMode: Text.Wrap
        text: L.t("quote.other_speaker", root.finding.speaker)
    }
}
