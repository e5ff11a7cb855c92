import QtQuick
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// A row of the report: a heading, a note, or a part of a card.
Item {
    id: root

    required property reportRow row
    required property string openStamp
    required property ReportLoader loader
    required property real growth // of bars, from 0 to 1
    required property string spoken
    required property bool pointed // at its line
    readonly property bool claim: row.item && row.kind !== ReportKind.Blocker
    readonly property bool onCard: row.kind !== ReportKind.Heading && row.kind !== ReportKind.Note
    readonly property int edge: row.kind === ReportKind.Blocker ? padCard : row.kind === ReportKind.Metric ? 6
        : row.kind === ReportKind.Speaker ? Theme.gapGroup : 0
    readonly property int padCard: 14
    readonly property int above: row.first ? edge : row.kind === ReportKind.Blocker ? 5
        : row.kind === ReportKind.Speaker && row.count === 0 ? edge : 0

    signal stampPressed(string stamp)
    signal copyAsked()

    implicitHeight: content.y + content.implicitHeight + (row.last ? edge : 0)
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.focusable: row.item
    Accessible.ignored: !row.item
    Keys.onReturnPressed: event => event.accepted = firstStamp()
    Keys.onEnterPressed: event => event.accepted = firstStamp()
    Keys.onSpacePressed: event => event.accepted = firstStamp()

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
    function firstStamp(): bool {
        if (!root.activeFocus || root.row.firstStamp.length === 0) return false;
        root.stampPressed(root.row.firstStamp);
        return true;
    }

    Item { // the part of the card that lies under this row
        anchors.fill: parent
        visible: root.onCard
        clip: true
        Rectangle {
            readonly property int above: root.row.first ? 0 : 20
            y: -above
            width: parent.width
            height: parent.height + above + (root.row.last ? 0 : 20)
            radius: Theme.rCard - 1
            color: Theme.bgCard
            border.width: Theme.hair
            border.color: Theme.line
        }
        Rectangle {
            x: 16
            width: parent.width - 32
            height: Theme.hair
            visible: !root.row.first && (root.claim || root.row.kind === ReportKind.Speaker && root.row.count === 0)
            color: Theme.line
        }
    }
    // qmllint disable unqualified
    Loader {
        id: content
        x: root.onCard ? 16 : 0
        y: root.above
        width: parent.width - 2 * x
        sourceComponent: root.claim ? claimRow : root.row.kind === ReportKind.Metric ? metricRow
            : root.row.kind === ReportKind.Blocker ? bulletRow : root.row.kind === ReportKind.Stats ? statsRow
            : root.row.kind === ReportKind.Speaker ? speakerRow : root.row.kind === ReportKind.Note ? noteRow : headingRow
    }
    Component {
        id: headingRow
        Label {
            topPadding: 22
            bottomPadding: 10
            type: Theme.overline
            color: Theme.text3
            text: L.t(root.row.key)
            Accessible.role: Accessible.Heading
        }
    }
    Component {
        id: noteRow
        Item {
            implicitHeight: note.implicitHeight
            SelectableText {
                id: note
                x: 2
                width: Math.min(parent.width, 480)
                topPadding: root.row.key === "report.note" ? 18 : 8
                type: Theme.caption
                color: Theme.text3
                text: L.t(root.row.key)
            }
        }
    }
    Component {
        id: metricRow
        MetricRow { row: root.row; growth: root.growth }
    }
    Component {
        id: bulletRow
        Bullet { text: root.row.body }
    }
    Component {
        id: statsRow
        StatsRow { row: root.row }
    }
    Component {
        id: speakerRow
        SpeakerRow { row: root.row; growth: root.growth }
    }
    Component {
        id: claimRow
        ClaimRow {
            row: root.row
            openStamp: root.openStamp
            loader: root.loader
            onStampPressed: stamp => root.stampPressed(stamp)
        }
    }
    Loader { // quiet: there for who points at the row or steps to it
        id: copying
        x: root.width + 3
        y: Math.min(6, (root.height - 28) / 2)
        active: root.row.item && (root.pointed || root.activeFocus)
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
    FocusRing { shown: root.row.item && root.activeFocus; corner: Theme.rSmall; gap: -4 }
}
