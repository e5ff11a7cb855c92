import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Detail
import Murmeli.Handout
import Murmeli.Localisation
import Murmeli.Margin
import Murmeli.Protocol
import Murmeli.Receipts
import Murmeli.Report
import Murmeli.Transcript
import Murmeli.Ui

// A meeting's protocol, and the tools to correct it and to pass it on.
Item {
    id: root

    required property MeetingDetailModel detail
    readonly property bool analysing: detail.analysing
    readonly property bool reading: detail.reading
    readonly property bool listing: detail.sheet !== MeetingDetailModel.None // something else of this meeting

    signal closed()

    function focusFirst(): void {
        header.focusFirst();
    }

    // In what is open; whether there is a search in it.
    function search(): bool {
        if (reading) (transcript.item as TranscriptPane).search();
        return reading;
    }

    // One step: from the analysis to the protocol, from there to the meetings.
    function back(): void {
        if (root.detail.visiting) { // who came for one place goes on from where they came
            root.closed();
            return;
        }
        if (root.reading) {
            root.detail.closeTranscript();
            if (root.analysing) (analysis.item as ReportPane).focusFirst();
            else header.focusTranscript();
            return;
        }
        if (root.listing) {
            const sheet = root.detail.sheet;
            root.detail.closeSheet();
            header.focusSheet(sheet);
            return;
        }
        if (!root.analysing) {
            root.closed();
            return;
        }
        root.detail.closeReport();
        header.focusAnalysis();
    }

    Keys.onEscapePressed: root.back()
    Keys.onPressed: event => {
        const undoes = !root.analysing && !root.reading && (!root.listing || root.detail.sheet === MeetingDetailModel.Changes);
        if (event.matches(StandardKey.Undo) && undoes) root.detail.undoLast();
        else if (root.analysing || root.reading || root.listing || !ScrollKeys.take(list, event)) return;
        event.accepted = true;
    }

    Connections {
        target: root.Window.window
        function onActiveFocusItemChanged() {
            const item = root.Window.activeFocusItem;
            for (let up = item; up; up = up.parent) {
                if (up === list.headerItem) list.show(item);
            }
        }
    }
    Connections {
        target: root.detail
        function onChanged() {
            if (list.begun || !root.detail.loaded) return;
            list.begun = true;
            list.positionViewAtBeginning();
        }
        function onItemShown(row: int) {
            list.positionViewAtIndex(row, ListView.Center);
            list.currentIndex = row;
        }
        function onCorrected(row: int) {
            if (row >= 0) list.positionViewAtIndex(row, ListView.Contain);
        }
    }
    Item {
        width: parent.width
        height: parent.height
        enabled: !root.analysing && !root.reading && !root.listing
        visible: enabled || opacity > 0
        opacity: enabled ? 1 : 0
        x: enabled ? 0 : -Theme.slide
        Behavior on opacity { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        Behavior on x { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }

        DetailHeader {
            id: header
            x: Theme.padMain
            width: parent.width - 2 * Theme.padMain
            detail: root.detail
            onClosed: root.closed()
            onAnalysisAsked: root.detail.openReport()
        }
        ListView {
            id: list

            property bool begun: kept.restored // the protocol has come, and is shown from its beginning
            property bool atTop: true
            // Whoever presses a text to select in it is not led by the keyboard.
            readonly property bool led: activeFocus && root.Window.activeFocusItem === list

            // What stands above the protocol's items scrolls with them.
            function show(item: Item): void {
                const top = item.mapToItem(contentItem, 0, 0).y;
                if (top < contentY) contentY = Math.max(originY, top - Theme.padMain);
                else if (top + item.height > contentY + height) contentY = top + item.height - height + Theme.padMain;
            }
            function step(by: int): void {
                if (by < 0 && currentIndex <= 0) positionViewAtBeginning(); // the summary has no stop of its own
                currentIndex = Math.max(0, Math.min(count - 1, currentIndex + by));
                if (currentIndex > 0) positionViewAtIndex(currentIndex, ListView.Contain);
            }

            anchors { left: parent.left; right: parent.right; top: header.bottom; bottom: remark.top }
            clip: true
            reuseItems: false
            bottomMargin: 36
            boundsBehavior: Flickable.StopAtBounds
            currentIndex: -1
            highlightFollowsCurrentItem: false
            keyNavigationEnabled: false
            activeFocusOnTab: true
            model: root.detail.sections
            Accessible.role: Accessible.List
            Accessible.name: root.detail.title
            ScrollBar.vertical: ScrollThumb { }
            onContentYChanged: atTop = contentY <= originY + 1
            onOriginYChanged: if (atTop) contentY = originY // the summary has become higher
            onActiveFocusChanged: if (activeFocus && currentIndex < 0 && count > 0) currentIndex = 0
            Keys.onUpPressed: step(-1)
            Keys.onDownPressed: step(1)
            Keys.onMenuPressed: if (currentIndex >= 0) menu.openAt(currentItem, Qt.point(Theme.grown(176), 30), currentIndex, "")
            Keys.onPressed: event => {
                if (event.matches(StandardKey.Copy)) {
                    root.detail.copyItem(currentIndex);
                    event.accepted = true;
                } else {
                    event.accepted = ScrollKeys.take(list, event);
                }
            }
            // Bound as a whole, the file could not have its loader below.
            // qmllint disable unqualified
            header: Column {
                x: Theme.padMain
                width: list.width - 2 * Theme.padMain
                Item {
                    width: parent.width
                    height: overwritten.visible ? overwritten.height + 20 : 0
                    OverwrittenNote {
                        id: overwritten
                        width: parent.width
                        visible: root.detail.changes.overwrittenCount > 0
                        changes: root.detail.changes
                    }
                }
                SelectableText {
                    width: Math.min(640, parent.width)
                    visible: root.detail.tldr.length > 0
                    bottomPadding: visible ? 20 : 0
                    color: Theme.text2
                    text: root.detail.tldr
                }
                MarkSection {
                    width: parent.width
                    marks: root.detail.marks
                }
            }
            delegate: Item {
                id: place

                required property int index
                required property string text
                required property string titleKey
                required property bool last
                required property string before
                required property bool corrected
                required property bool lit

                width: list.width
                height: row.implicitHeight
                ProtocolItemRow {
                    id: row
                    x: Theme.padMain
                    width: parent.width - 2 * Theme.padMain
                    text: place.text
                    titleKey: place.titleKey
                    last: place.last
                    before: place.before
                    corrected: place.corrected
                    lit: place.lit
                    current: list.led && place.index === list.currentIndex
                    onTaken: list.currentIndex = place.index
                    onMenuAsked: (at, selected) => menu.openAt(row, at, place.index, selected)
                }
            }
            // qmllint enable unqualified
            FocusRing { shown: list.led && list.count === 0; corner: Theme.rSmall; gap: -Theme.focusWidth * 2 }
        }
        KeptPlace {
            id: kept
            list: list
            memory: root.detail?.views ?? null
            key: "protocol"
        }
        ContextMenu {
            id: menu

            name: root.detail.title

            property int row: -1
            property string selected

            function openAt(item: Item, at: point, row: int, selected: string): void {
                menu.row = row;
                menu.selected = selected;
                menu.popup(item, at.x, at.y);
            }

            Action {
                text: L.t("detail.copy.selected")
                enabled: menu.selected.length > 0
                onTriggered: root.detail.copyText(menu.selected)
            }
            Action {
                text: L.t("detail.copy.item")
                onTriggered: root.detail.copyItem(menu.row)
            }
            Action {
                text: L.t("detail.copy.all")
                onTriggered: root.detail.copyProtocol()
            }
        }
        Rectangle { // the protocol fades out under the remark box
            anchors { left: parent.left; right: parent.right; rightMargin: Theme.gapGroup; bottom: remark.top }
            height: 36
            gradient: Gradient {
                GradientStop { position: 0; color: Theme.alpha(Theme.bgWindow, 0) }
                GradientStop { position: 1; color: Theme.bgWindow }
            }
        }
        RemarkBox {
            id: remark
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            account: root.detail.account
            editor: root.detail.editor
            changes: root.detail.changes
            locked: root.detail.locked
            glossary: root.detail.glossary
            memory: root.detail.views
            draft: root.detail.draft
            onWritten: draft => root.detail.draft = draft
            onSent: root.detail.sendRemark()
        }
    }
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    Loader {
        id: analysis
        property real presence: root.analysing ? 1 : 0
        width: parent.width
        height: parent.height
        x: (1 - presence) * Theme.slide
        opacity: presence
        active: presence > 0
        enabled: root.analysing && !root.reading
        Behavior on presence { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        onLoaded: (item as ReportPane).focusFirst()
        sourceComponent: ReportPane {
            account: root.detail.account
            loader: root.detail.report
            memory: root.detail.views
            meetingLine: root.detail.title + L.t("common.dot") + root.detail.dateLine
            locked: root.detail.locked
            onBuildAsked: root.detail.buildReport()
            onClosed: root.back()
        }
    }
    Loader {
        id: changes
        property real presence: root.detail.sheet === MeetingDetailModel.Changes ? 1 : 0
        width: parent.width
        height: parent.height
        x: (1 - presence) * Theme.slide
        opacity: presence
        active: presence > 0
        enabled: presence > 0 && root.listing
        Behavior on presence { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        onLoaded: (item as ChangesPane).focusFirst()
        sourceComponent: ChangesPane {
            changes: root.detail.changes
            meetingTitle: root.detail.title
            onClosed: root.back()
        }
    }
    Loader {
        id: sent
        property real presence: root.detail.sheet === MeetingDetailModel.Sent ? 1 : 0
        width: parent.width
        height: parent.height
        x: (1 - presence) * Theme.slide
        opacity: presence
        active: presence > 0
        enabled: presence > 0 && root.listing
        Behavior on presence { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        onLoaded: (item as SentPane).focusFirst()
        sourceComponent: SentPane {
            sent: root.detail.sent
            meetingLine: root.detail.title + L.t("common.dot") + root.detail.dateLine
            locked: root.detail.locked
            lockKnown: root.detail.lockable
            onLockAsked: locked => root.detail.locked = locked
            onClosed: root.back()
        }
    }
    Loader {
        id: handout
        property real presence: root.detail.sheet === MeetingDetailModel.HandOut ? 1 : 0
        width: parent.width
        height: parent.height
        x: (1 - presence) * Theme.slide
        opacity: presence
        active: presence > 0 && root.detail.handout !== null // another meeting has none yet
        enabled: presence > 0 && root.listing
        Behavior on presence { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        onLoaded: (item as HandoutPane).focusFirst()
        sourceComponent: HandoutPane {
            handout: root.detail.handout
            meetingLine: root.detail.title + L.t("common.dot") + root.detail.dateLine
            onClosed: root.back()
        }
    }
    Loader {
        id: transcript
        property real presence: root.reading ? 1 : 0
        width: parent.width
        height: parent.height
        x: (1 - presence) * Theme.slide
        opacity: presence
        active: presence > 0
        enabled: root.reading
        Behavior on presence { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        onLoaded: (item as TranscriptPane).focusFirst()
        sourceComponent: TranscriptPane {
            transcript: root.detail.transcript
            meetingLine: root.detail.title + L.t("common.dot") + root.detail.dateLine
            onClosed: root.back()
        }
    }
    // qmllint enable unqualified
}
