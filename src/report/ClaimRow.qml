import QtQuick
import QtQuick.Layouts
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// One claim of the analysis, whatever it is about, with the moments that it stands on.
Column {
    id: root

    required property reportRow row
    required property string openStamp
    required property ReportLoader loader
    readonly property bool compact: row.kind === ReportKind.Agenda || row.kind === ReportKind.Number
    readonly property bool stampsBelow: row.kind === ReportKind.Insight || row.kind === ReportKind.Commitment
    readonly property bool holdsOpen: openStamp.length > 0 && row.holds(openStamp)

    signal stampPressed(string stamp)

    topPadding: compact ? 10 : 13
    bottomPadding: topPadding

    // qmllint disable unqualified
    component Chips: Flow {
        spacing: 6
        Repeater {
            model: root.row.stamps
            StampChip {
                required property string modelData
                stamp: modelData
                open: root.openStamp === stamp
                spokenStamp: root.loader.spoken(stamp, L.language)
                onClicked: root.stampPressed(stamp)
            }
        }
    }

    RowLayout {
        width: parent.width
        spacing: Theme.gapRow

        Loader {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 1
            active: root.row.kind === ReportKind.Agenda
            visible: active
            sourceComponent: Symbol {
                size: 18
                name: root.row.firm ? "checkmark.circle.fill" : root.row.partial ? "circle.lefthalf.filled" : "circle"
                ink: root.row.firm ? Theme.inkGreen : root.row.partial ? Theme.inkBlue : Theme.text4
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.maximumWidth: Math.max(title.implicitWidth, note.active ? note.implicitWidth : 0) + 1
            Layout.alignment: Qt.AlignTop
            spacing: 0
            SelectableText {
                id: title
                Layout.fillWidth: true
                type: root.compact ? Theme.label : Theme.row
                text: root.row.title
            }
            Loader {
                id: note
                Layout.fillWidth: true
                active: root.row.kind === ReportKind.Number && root.row.body.length > 0
                visible: active
                sourceComponent: SelectableText {
                    type: Theme.caption
                    color: Theme.text3
                    text: root.row.body
                }
            }
        }
        SelectableText {
            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth + 1
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 2
            visible: root.row.lead.length > 0
            type: Theme.sub
            color: root.row.kind === ReportKind.Role ? Theme.inkViolet : Theme.text2
            text: root.row.lead
        }
        Item { Layout.fillWidth: true }
        SelectableText {
            readonly property bool number: root.row.kind === ReportKind.Number
            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth + 1
            Layout.alignment: number ? Qt.AlignVCenter : Qt.AlignTop
            Layout.topMargin: number ? 0 : 1
            Layout.rightMargin: number ? 6 : 0
            visible: root.row.value.length > 0
            type: number ? Theme.head : Theme.sub
            color: number ? Theme.text1 : Theme.text2
            text: root.row.value
        }
        Loader {
            Layout.alignment: Qt.AlignTop
            active: root.row.kind === ReportKind.Commitment
            visible: active
            sourceComponent: Pill {
                type: Theme.badge
                ink: root.row.firm ? Theme.inkGreen : Theme.text2
                color: root.row.firm ? Theme.tint(Theme.green) : Theme.fill
                text: root.row.firm ? L.t("report.firm") : L.t("report.soft")
            }
        }
        Loader {
            Layout.alignment: root.row.kind === ReportKind.Number ? Qt.AlignVCenter : Qt.AlignTop
            Layout.maximumWidth: root.width / 2
            active: !root.stampsBelow && root.row.stamps.length > 0
            visible: active
            sourceComponent: Chips { }
        }
    }
    SelectableText {
        readonly property bool task: root.row.kind === ReportKind.Commitment
        width: parent.width
        topPadding: 3
        visible: root.row.kind !== ReportKind.Number && text.length > 0
        type: task ? Theme.body : Theme.claim
        color: task ? Theme.text1 : Theme.text2
        text: root.row.body
    }
    Loader {
        width: parent.width
        active: root.row.quote.length > 0
        visible: active
        sourceComponent: SelectableText {
            topPadding: 4
            type: Theme.sub
            font.italic: true
            color: Theme.text2
            text: root.row.quote
        }
    }
    Loader {
        width: parent.width
        active: root.row.kind === ReportKind.Commitment && root.row.ending.length > 0
        visible: active
        sourceComponent: SelectableText {
            topPadding: 4
            type: Theme.sub
            color: Theme.text2
            text: L.t("report.dod", root.row.ending)
        }
    }
    Repeater {
        model: root.row.sides
        RowLayout {
            id: side
            required property reportSide modelData
            width: root.width
            spacing: 10
            SelectableText {
                Layout.topMargin: 8
                Layout.preferredWidth: 74
                Layout.alignment: Qt.AlignTop
                type: Theme.label
                text: side.modelData.who
            }
            SelectableText {
                Layout.topMargin: 7
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignTop
                type: Theme.running
                color: Theme.text2
                text: side.modelData.position
            }
            StampChip {
                Layout.topMargin: 7
                Layout.alignment: Qt.AlignTop
                visible: stamp.length > 0
                stamp: side.modelData.at
                open: visible && root.openStamp === stamp
                spokenStamp: root.loader.spoken(stamp, L.language)
                onClicked: root.stampPressed(stamp)
            }
        }
    }
    Loader {
        width: parent.width
        active: root.row.kind === ReportKind.Disagreement && root.row.ending.length > 0
        visible: active
        sourceComponent: RowLayout {
            spacing: Theme.gapSmall
            Label {
                Layout.topMargin: 10
                Layout.alignment: Qt.AlignTop
                type: Theme.sub
                color: Theme.text3
                text: L.t("report.outcome", "").trim()
            }
            SelectableText {
                Layout.topMargin: 10
                Layout.fillWidth: true
                type: Theme.sub
                text: root.row.ending
            }
        }
    }
    Loader {
        width: parent.width
        active: root.row.pros.length > 0 || root.row.cons.length > 0
        visible: active
        sourceComponent: Row {
            topPadding: 8
            spacing: 20
            Repeater {
                model: [
                    { items: root.row.pros, ink: Theme.green },
                    { items: root.row.cons, ink: Theme.red }
                ]
                Column {
                    id: half
                    required property var modelData
                    width: (root.width - 20) / 2
                    spacing: 5
                    Repeater {
                        model: half.modelData.items
                        Bullet {
                            required property string modelData
                            width: half.width
                            text: modelData
                            ink: half.modelData.ink
                        }
                    }
                }
            }
        }
    }
    Loader {
        width: parent.width
        active: root.stampsBelow && root.row.stamps.length > 0
        visible: active
        sourceComponent: Item {
            implicitHeight: chips.height + 9
            Chips {
                id: chips
                y: 9
                width: parent.width
            }
        }
    }
    Loader {
        id: quotation
        property bool wanted: false
        width: parent.width
        active: root.holdsOpen || wanted
        visible: active
        onLoaded: wanted = true // it folds before it goes
        sourceComponent: Quotation {
            lines: root.holdsOpen ? root.loader.quote(root.openStamp) : []
        }
    }
    // qmllint enable unqualified
}
