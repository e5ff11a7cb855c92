import QtQuick
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// A row of the report: a heading, a note, or a part of a card.
Item {
    id: root

    required property int kind // a ReportKind
    required property var value // of the kind's own type; of a heading and a note the text's key
    required property bool claim
    required property bool first // on its card
    required property bool last
    required property var stamps
    required property quoteFinding finding
    required property ReportLoader loader
    required property real growth // of bars, from 0 to 1
    required property string spoken
    required property bool pointed // at its line
    readonly property bool onCard: kind !== ReportKind.Heading && kind !== ReportKind.Note
    readonly property bool firstSpeaker: kind === ReportKind.Speaker && value.place === 0
    readonly property int edge: kind === ReportKind.Blocker ? 14 : kind === ReportKind.Metric ? 6
        : kind === ReportKind.Speaker ? Theme.gapGroup : 0 // of the card
    readonly property int above: first || firstSpeaker ? edge : kind === ReportKind.Blocker ? 5 : 0
    readonly property bool ruled: !first && (claim && kind !== ReportKind.Blocker || firstSpeaker)

    signal copyAsked()

    implicitHeight: content.y + content.implicitHeight + (last ? edge : 0)
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.focusable: claim
    Accessible.ignored: !claim
    Keys.onReturnPressed: event => event.accepted = openFirst()
    Keys.onEnterPressed: event => event.accepted = openFirst()
    Keys.onSpacePressed: event => event.accepted = openFirst()

    // What the keyboard reaches in this row, in reading order.
    function stops(): var {
        const found = [];
        const ahead = [root];
        while (ahead.length > 0) {
            const item = ahead.pop();
            if (item["stop"] === true) found.push(item);
            else ahead.push(...Array.from(item.children).filter(child => child.visible).reverse());
        }
        return found;
    }
    function openFirst(): bool {
        if (!activeFocus || stamps.length === 0) return false;
        loader.toggle(stamps[0]);
        return true;
    }

    Item { // the part of the card that lies under this row
        anchors.fill: parent
        visible: root.onCard
        clip: true
        Rectangle {
            readonly property int above: root.first ? 0 : 20
            y: -above
            width: parent.width
            height: parent.height + above + (root.last ? 0 : 20)
            radius: Theme.rCard - 1
            color: Theme.bgCard
            border.width: Theme.hair
            border.color: Theme.line
        }
        Rectangle {
            x: 16
            width: parent.width - 32
            height: Theme.hair
            visible: root.ruled
            color: Theme.line
        }
    }
    Loader {
        id: content
        x: root.onCard ? 16 : 0
        y: root.above
        width: parent.width - 2 * x
        sourceComponent: {
            switch (root.kind) {
            case ReportKind.Heading: return heading;
            case ReportKind.Metric: return metric;
            case ReportKind.Blocker: return blocker;
            case ReportKind.Insight: return insight;
            case ReportKind.Commitment: return commitment;
            case ReportKind.Disagreement: return disagreement;
            case ReportKind.Agenda: return agenda;
            case ReportKind.Number: return number;
            case ReportKind.Concept: return concept;
            case ReportKind.Role: return role;
            case ReportKind.Figures: return figures;
            case ReportKind.Speaker: return speaker;
            default: return note;
            }
        }
    }
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    Component {
        id: heading
        Item {
            implicitHeight: name.height
            Label {
                id: name
                topPadding: 22
                bottomPadding: 10
                type: Theme.overline
                color: Theme.text3
                text: L.t(root.value)
                Accessible.role: Accessible.Heading
            }
            Label {
                anchors { right: parent.right; left: name.right; leftMargin: Theme.padPanel; baseline: name.baseline }
                horizontalAlignment: Text.AlignRight
                visible: text.length > 0
                type: Theme.caption
                color: Theme.text3
                text: root.value === "report.commitments" ? root.loader.quoteSum(L.language, root.loader.checks) : ""
                Accessible.role: Accessible.StatusBar
            }
        }
    }
    Component {
        id: note
        Item {
            implicitHeight: line.implicitHeight
            SelectableText {
                id: line
                x: 2
                width: Math.min(parent.width, 480)
                topPadding: root.value === "report.note" || root.value === "report.none" ? 18 : 8
                type: Theme.caption
                color: Theme.text3
                text: L.t(root.value)
            }
        }
    }
    Component { id: metric; MetricRow { value: root.value; growth: root.growth } }
    Component { id: blocker; Bullet { text: root.value.what } }
    Component { id: insight; InsightRow { value: root.value; loader: root.loader } }
    Component { id: commitment; CommitmentRow { value: root.value; loader: root.loader; finding: root.finding } }
    Component { id: disagreement; DisagreementRow { value: root.value; loader: root.loader } }
    Component { id: agenda; AgendaRow { value: root.value; loader: root.loader } }
    Component { id: number; NumberRow { value: root.value; loader: root.loader } }
    Component { id: concept; ConceptRow { value: root.value; loader: root.loader } }
    Component { id: role; RoleRow { value: root.value; loader: root.loader } }
    Component { id: figures; FiguresRow { value: root.value } }
    Component { id: speaker; SpeakerRow { value: root.value; growth: root.growth } }
    Loader { // quiet: there for who points at the row or steps to it
        id: copying
        x: root.width + 3
        y: Math.min(6, (root.height - 28) / 2)
        active: root.claim && (root.pointed || root.activeFocus)
        sourceComponent: IconButton {
            id: copyButton
            property bool done: false
            focusPolicy: Qt.NoFocus // by keyboard: the usual key for copying
            side: 28
            symbolSize: Theme.symbolSmall
            symbol: done ? "checkmark" : "doc.plaintext"
            help: L.t("report.copy")
            onClicked: {
                root.copyAsked();
                done = true;
            }
            Timer {
                running: copyButton.done
                interval: Theme.confirm
                onTriggered: copyButton.done = false
            }
        }
    }
    // qmllint enable unqualified
    FocusRing { shown: root.claim && root.activeFocus; corner: Theme.rSmall; gap: -4 }
}
