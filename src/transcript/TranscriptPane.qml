pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Transcript
import Murmeli.Ui

// What was said at a meeting, to be read, searched, marked and quoted.
Item {
    id: root

    required property TranscriptModel transcript
    required property string meetingLine

    signal closed()

    function focusFirst(): void {
        list.forceActiveFocus(Qt.OtherFocusReason);
    }
    function search(): void {
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }
    // A third down from the top, where the eye looks first.
    function bring(row: int): void {
        if (row < 0) return;
        list.positionViewAtIndex(row, ListView.Beginning);
        list.contentY = Math.max(list.originY - list.topMargin, list.contentY - list.height * 0.3);
        list.returnToBounds();
    }

    Keys.onEscapePressed: {
        if (root.transcript.selecting) root.transcript.clearSelection();
        else root.closed();
    }
    Keys.onPressed: event => {
        if (event.key === Qt.Key_F3) root.transcript.step(event.modifiers & Qt.ShiftModifier ? -1 : 1);
        else if (event.matches(StandardKey.Copy) && root.transcript.selecting) root.transcript.copyQuote();
        else if (event.key === Qt.Key_B && event.modifiers & Qt.ControlModifier) root.transcript.mark();
        else if (!ScrollKeys.take(list, event)) return;
        event.accepted = true;
    }

    Connections {
        target: root.transcript
        function onHitShown(row: int): void {
            root.bring(row);
        }
        function onHereChanged(): void {
            arrival.restart();
        }
    }
    Timer { // once the rows have their places
        id: arrival
        interval: 0
        running: true
        onTriggered: root.bring(root.transcript.here)
    }
    Item {
        id: header
        width: parent.width

        readonly property int above: Math.max(20, 10 + Theme.chromeInset)

        height: above + texts.height + 17

        Column {
            id: texts
            anchors { left: parent.left; leftMargin: Theme.padMain; right: field.left; rightMargin: Theme.padPanel }
            y: header.above
            spacing: 2
            Label {
                width: parent.width
                type: Theme.title
                elide: Text.ElideRight
                text: L.t("transcript.title")
                Accessible.role: Accessible.Heading
            }
            Label {
                width: parent.width
                type: Theme.sub
                color: Theme.text3
                elide: Text.ElideRight
                text: root.meetingLine
            }
        }
        SearchField {
            id: field
            anchors { right: previous.left; rightMargin: Theme.gapSmall; verticalCenter: close.verticalCenter }
            width: Theme.grown(230)
            rightPadding: text.length > 0 ? place.width + 40 : 11
            name: L.t("transcript.find.name")
            clearName: L.t("meetings.search.clear")
            placeholderText: L.t("transcript.find")
            text: root.transcript.query
            onTextChanged: root.transcript.query = text
            Keys.onReturnPressed: event => root.transcript.step(event.modifiers & Qt.ShiftModifier ? -1 : 1)
            Keys.onEnterPressed: root.transcript.step(1)
            Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)
            Accessible.description: place.text
        }
        Label {
            id: place
            anchors { right: field.right; rightMargin: 34; verticalCenter: field.verticalCenter }
            visible: root.transcript.hitCount >= 0
            type: Theme.caption
            color: Theme.text3
            text: root.transcript.hitCount === 0 ? L.t("meetings.nothing_found")
                : root.transcript.hit + " " + L.t("transcript.of", root.transcript.hitCount)
            Accessible.role: Accessible.StatusBar
        }
        IconButton {
            id: previous
            anchors { right: next.left; verticalCenter: close.verticalCenter }
            enabled: root.transcript.hitCount > 0
            symbol: "chevron.up"
            symbolSize: Theme.symbolText
            help: L.t("transcript.previous")
            onClicked: root.transcript.step(-1)
        }
        IconButton {
            id: next
            anchors { right: copy.left; verticalCenter: close.verticalCenter }
            enabled: root.transcript.hitCount > 0
            symbol: "chevron.down"
            symbolSize: Theme.symbolText
            help: L.t("transcript.next")
            onClicked: root.transcript.step(1)
        }
        IconButton {
            id: copy
            anchors { right: close.left; rightMargin: Theme.gapRow; verticalCenter: close.verticalCenter }
            enabled: !root.transcript.empty
            symbol: "doc.on.doc"
            symbolSize: Theme.symbolText
            help: L.t("transcript.copy_all")
            onClicked: root.transcript.copyAll()
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
    Label {
        id: cutNote
        anchors { left: parent.left; leftMargin: Theme.padMain; right: parent.right; rightMargin: Theme.padMain; top: header.bottom }
        topPadding: visible ? 10 : 0
        height: visible ? implicitHeight : 0
        visible: root.transcript.cut
        type: Theme.sub
        color: Theme.inkPink
        text: L.t("transcript.cut")
        Accessible.role: Accessible.StatusBar
    }
    Label {
        anchors.centerIn: list
        width: Math.min(implicitWidth, list.width - 2 * Theme.padMain)
        visible: root.transcript.loaded && root.transcript.empty
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        color: Theme.text2
        text: L.t("report.error.no_transcript")
        Accessible.role: Accessible.StatusBar
    }
    ListView {
        id: list

        function go(by: int, extend: bool): void {
            const from = root.transcript.current >= 0 ? root.transcript.current : Math.max(-1, root.transcript.here - (by > 0 ? 1 : 0));
            const row = Math.max(0, Math.min(count - 1, from + by));
            root.transcript.select(row, extend);
            positionViewAtIndex(row, ListView.Contain);
        }

        anchors { left: parent.left; right: parent.right; top: cutNote.bottom; bottom: parent.bottom }
        clip: true
        reuseItems: true
        cacheBuffer: 200
        topMargin: 10
        bottomMargin: 24
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        activeFocusOnTab: true
        model: root.transcript
        Accessible.role: Accessible.List
        Accessible.name: L.t("transcript.title")
        ScrollBar.vertical: ScrollThumb { }
        Keys.onUpPressed: event => go(-1, event.modifiers & Qt.ShiftModifier)
        Keys.onDownPressed: event => go(1, event.modifiers & Qt.ShiftModifier)

        delegate: TranscriptRow {
            width: ListView.view.width
            transcript: root.transcript
            current: list.activeFocus && root.transcript.current === index
            onPressed: extend => {
                list.forceActiveFocus(Qt.MouseFocusReason);
                root.transcript.select(index, extend);
            }
            onDraggedTo: at => {
                const row = list.indexAt(1, y + at.y);
                if (row >= 0) root.transcript.select(row, true);
            }
        }
        FocusRing { shown: list.activeFocus && list.count === 0; corner: Theme.rSmall; gap: -Theme.focusWidth * 2 }
    }
    Rectangle { // what can be done with the selected lines
        id: tools

        readonly property Item row: root.transcript.current >= 0 && list.contentY > -1e9 ? list.itemAtIndex(root.transcript.current) : null

        x: parent.width - width - Theme.padMain
        y: Math.max(header.height + Theme.gapSmall, list.y + (row ? row.y - list.contentY : 0) - height + 10)
        visible: row !== null
        width: buttons.width + 8
        height: buttons.height + 8
        radius: Theme.rRow
        color: Theme.bgPop
        border.width: Theme.hair
        border.color: Theme.popEdge
        Row {
            id: buttons
            x: 4
            y: 4
            LinkButton {
                symbol: "doc.on.doc"
                ink: Theme.text1
                text: L.t("transcript.copy_quote")
                onClicked: root.transcript.copyQuote()
            }
            LinkButton {
                symbol: "bookmark"
                ink: Theme.text1
                text: L.t("margin.mark")
                onClicked: root.transcript.mark()
            }
        }
    }
}
