pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Account
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// The analysis of a meeting, every claim of it with the moments that it stands on.
Item {
    id: root

    required property AuthManager account
    required property ReportLoader loader
    required property string meetingLine
    property ViewMemory memory: null
    property bool locked: false // nothing of the meeting is sent
    readonly property var steps: ({ j: 1, "\u043e": 1, k: -1, "\u043b": -1 }) // keys by their place, whatever the layout

    signal buildAsked()
    signal closed()

    function focusFirst(): void {
        build.forceActiveFocus(Qt.OtherFocusReason);
    }
    function step(direction: int): void {
        const from = list.activeFocus ? list.currentIndex : -1;
        const row = root.loader.rows.neighbour(from, direction);
        if (row < 0) return;
        list.currentIndex = row;
        list.positionViewAtIndex(row, ListView.Contain);
        const item = list.itemAtIndex(row) ?? null; // of a type of its own
        item?.take();
    }
    // To the next moment in reading order, which rows that are not there yet have too.
    function walk(direction: int): void {
        const here = list.activeFocus ? list.currentItem : null;
        const stops = here?.stops() ?? [];
        const at = stops.indexOf(root.Window.activeFocusItem);
        const next = at >= 0 ? at + direction : direction > 0 ? 0 : -1;
        if (next >= 0 && next < stops.length) {
            list.show(stops[next]);
            return;
        }
        const row = root.loader.rows.stampedNeighbour(here ? list.currentIndex : -1, direction);
        if (row < 0) {
            gate.nextItemInFocusChain(direction > 0).forceActiveFocus(direction > 0 ? Qt.TabFocusReason : Qt.BacktabFocusReason);
            return;
        }
        list.positionViewAtIndex(row, ListView.Contain);
        list.currentIndex = row;
        const there = list.currentItem.stops();
        list.show(there[direction > 0 ? 0 : there.length - 1]);
    }

    function walkFromWithin(direction: int): bool {
        const within = list.activeFocus;
        if (within) walk(direction);
        return within;
    }

    Keys.onEscapePressed: {
        if (loader.openStamp.length > 0) loader.toggle(loader.openStamp);
        else root.closed();
    }
    Keys.onDownPressed: step(1)
    Keys.onUpPressed: step(-1)
    Keys.onTabPressed: event => event.accepted = walkFromWithin(1)
    Keys.onBacktabPressed: event => event.accepted = walkFromWithin(-1)
    Keys.onPressed: event => {
        const direction = steps[event.text] ?? 0;
        if (event.matches(StandardKey.Copy) && list.activeFocus) root.loader.copy(list.currentIndex);
        else if (direction !== 0) root.step(direction);
        else if (!list.visible || !ScrollKeys.take(list, event)) return;
        event.accepted = true;
    }

    Item {
        id: header
        width: parent.width

        readonly property int above: Math.max(20, 10 + Theme.chromeInset)

        height: above + texts.height + 17

        Column {
            id: texts
            anchors { left: parent.left; leftMargin: Theme.padMain; right: build.left; rightMargin: Theme.padPanel }
            y: header.above
            spacing: 2
            Label {
                width: parent.width
                type: Theme.title
                text: L.t("report.title")
                Accessible.role: Accessible.Heading
            }
            Item {
                width: parent.width
                height: line.height
                Symbol {
                    y: 1
                    visible: !root.loader.error.empty
                    size: Theme.symbolSmall
                    name: "exclamationmark.triangle"
                    ink: Theme.inkRed
                }
                Label {
                    id: line
                    x: !root.loader.error.empty ? 19 : 0
                    width: Math.min(implicitWidth, parent.width - x - (signIn.visible ? signIn.width + Theme.gapSmall : 0))
                    type: Theme.sub
                    color: !root.loader.error.empty ? Theme.inkRed : Theme.text3
                    text: !root.loader.error.empty ? L.say(root.loader.error) : root.locked ? L.t("lock.closed") : root.meetingLine
                    wrapMode: root.loader.error.empty ? Text.NoWrap : Text.Wrap
                    Accessible.role: !root.loader.error.empty ? Accessible.AlertMessage : Accessible.StaticText
                }
                SignInLink {
                    id: signIn
                    anchors { left: line.right; leftMargin: Theme.gapSmall; verticalCenter: line.verticalCenter }
                    visible: !account.isAuthed && root.loader.needsSignIn
                    account: root.account
                }
            }
        }
        PillButton {
            id: build
            anchors { right: close.left; rightMargin: Theme.gapRow; verticalCenter: close.verticalCenter }
            buttonHeight: Theme.buttonHeight
            kind: root.loader.present ? PillButton.Tinted : PillButton.Primary
            enabled: !root.loader.loading && !root.locked
            help: root.locked ? L.t("lock.closed") : ""
            text: root.loader.present ? L.t("report.rebuild") : L.t("report.build")
            onClicked: root.buildAsked()
        }
        IconButton {
            id: close
            anchors { right: parent.right; rightMargin: 24 }
            y: header.above + 12
            side: Theme.buttonHeight
            round: true
            filled: true
            symbol: "xmark"
            symbolSize: Theme.symbolSmall
            help: L.t("common.close")
            onClicked: root.closed()
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: Theme.hair
            color: Theme.line
        }
    }
    Control { // the keyboard comes this way to the moments, from either side
        id: gate
        focusPolicy: Qt.TabFocus
        Accessible.ignored: true
        onActiveFocusChanged: if (activeFocus) root.walk(focusReason === Qt.BacktabFocusReason ? -1 : 1)
    }
    Connections {
        target: root.loader.rows
        function onModelReset() {
            list.currentIndex = -1;
            arrival.restart();
        }
    }
    Timer { // once the rows have their places
        id: arrival
        interval: 0
        running: true
        onTriggered: {
            const row = root.loader.wantedRow;
            if (row < 0 || row >= list.count) return;
            root.loader.wantedRow = -1;
            list.positionViewAtIndex(row, ListView.Center);
            list.currentIndex = row;
            list.currentItem?.take();
        }
    }
    Column {
        anchors.centerIn: list
        anchors.verticalCenterOffset: -30
        visible: root.loader.loading
        spacing: Theme.padCard
        Spinner {
            anchors.horizontalCenter: parent.horizontalCenter
            size: 22
        }
        Label {
            color: Theme.text2
            text: L.t("report.building")
            Accessible.role: Accessible.StatusBar
        }
    }
    Column {
        readonly property var lines: L.t("report.empty").split("\n")
        anchors.centerIn: list
        anchors.verticalCenterOffset: -30
        visible: !root.loader.loading && root.loader.empty && root.loader.asked
        Accessible.role: Accessible.StatusBar
        Accessible.name: L.t("report.empty")
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            type: Theme.row
            text: parent.lines[0]
            Accessible.ignored: true
        }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            type: Theme.body
            color: Theme.text2
            text: parent.lines[1] ?? ""
            Accessible.ignored: true
        }
    }
    KeptPlace {
        list: list
        memory: root.memory
        key: "report"
    }
    ListView {
        id: list

        function show(item: Item): void {
            const top = item.mapToItem(contentItem, 0, 0).y - 8;
            const bottom = top + item.height + 16;
            if (top < contentY) contentY = top;
            else if (bottom > contentY + height) contentY = bottom - height;
            item.forceActiveFocus(Qt.TabFocusReason);
        }

        property real growth: visible && count > 0 ? 1 : 0 // of bars

        anchors { left: parent.left; right: parent.right; top: header.bottom; bottom: parent.bottom }
        visible: !root.loader.loading && !root.loader.empty
        clip: true
        cacheBuffer: 240
        bottomMargin: 36
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        currentIndex: -1
        model: root.loader.rows
        Accessible.role: Accessible.List
        Accessible.name: L.t("report.title")
        ScrollBar.vertical: ScrollThumb { }

        Behavior on growth { NumberAnimation { duration: Theme.progress; easing.type: Easing.OutCubic } }

        delegate: FocusScope {
            id: place

            required property int index
            required property int kind
            required property var value
            required property bool claim
            required property bool first
            required property bool last
            required property var stamps
            required property quoteFinding finding

            width: list.width
            height: view.implicitHeight
            // What unfolds is seen to its end, and who pressed for it stays in sight.
            onHeightChanged: {
                if (!(over.hovered || activeFocus) || !stamps.includes(root.loader.openStamp)) return;
                const below = y + height + 8 - list.height;
                if (list.contentY < below) list.contentY = Math.max(list.contentY, Math.min(below, y - 8));
            }
            function stops(): var { return view.stops(); }
            function take(): void { view.forceActiveFocus(Qt.TabFocusReason); }

            onActiveFocusChanged: {
                if (!activeFocus) return;
                const y = list.contentY; // whoever presses a text reads just there
                list.currentIndex = index;
                list.contentY = y;
            }
            HoverHandler { id: over }
            ReportRowView {
                id: view
                x: Theme.padMain
                width: parent.width - 2 * Theme.padMain
                focus: true
                kind: place.kind
                value: place.value
                claim: place.claim
                first: place.first
                last: place.last
                stamps: place.stamps
                finding: place.finding
                loader: root.loader
                growth: list.growth
                spoken: root.loader.rows.spoken(place.index, L.language)
                pointed: over.hovered
                onCopyAsked: root.loader.copy(place.index)
            }
        }
    }
}
