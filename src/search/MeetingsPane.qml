pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Meetings
import Murmeli.Search
import Murmeli.Ui

// All meetings, day by day, and the search in all that they say.
Item {
    id: root

    required property MeetingStore store
    required property SearchModel search
    property ViewMemory memory: null
    property bool beginning: false
    default property alias notice: above.data // what is said above the list

    signal opened(string id)
    signal placeOpened(string id, foundPlace place)

    function find(): void {
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }
    // Takes the keyboard without pointing at a row.
    function begin(): void {
        beginning = true;
        list.forceActiveFocus(Qt.OtherFocusReason);
        beginning = false;
    }
    function focusList(id: string): void {
        const row = root.store.list.rowOf(id);
        if (row >= 0 && row !== list.currentIndex) list.currentIndex = row;
        list.forceActiveFocus(Qt.OtherFocusReason);
    }

    Label {
        id: heading
        x: Theme.padMain
        y: 26 + Theme.chromeInset
        type: Theme.display
        text: L.t("meetings.title")
        Accessible.role: Accessible.Heading
    }
    SearchField {
        id: field
        anchors { right: parent.right; rightMargin: Theme.padMain; verticalCenter: heading.verticalCenter }
        name: L.t("meetings.search.name")
        clearName: L.t("meetings.search.clear")
        placeholderText: L.t("meetings.search")
        width: root.search.searching || activeFocus ? Theme.grown(300) : implicitWidth
        text: root.search.query
        onTextChanged: root.search.query = text
        Behavior on width { NumberAnimation { duration: Theme.quick } }
        Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)
    }
    Loader { // most of the time nobody searches
        id: bar
        anchors { left: parent.left; right: parent.right; top: heading.bottom; topMargin: 12 }
        active: root.search.searching
        height: (item as SearchBar)?.implicitHeight ?? 0
        Component.onCompleted: setSource("SearchBar.qml", { search: root.search })
    }
    Column {
        id: above
        anchors { left: parent.left; right: parent.right; top: bar.bottom; topMargin: bar.active ? 4 : 0 }
        leftPadding: 20
    }
    ListView {
        id: list

        // What of a row the keyboard is at: its meeting, or one of its places, or what unfolds the others.
        property int stop: -1
        property var unfolded: ({}) // ids of meetings whose places show all

        function stopsOf(row: int): int {
            return (itemAtIndex(row) as FoundMeeting)?.stops ?? 0;
        }
        function step(by: int): void {
            if (currentIndex < 0) {
                currentIndex = by > 0 ? 0 : count - 1;
                return;
            }
            if (by > 0 && stop + 1 < stopsOf(currentIndex)) {
                ++stop;
            } else if (by < 0 && stop >= 0) {
                --stop;
            } else if (currentIndex + by >= 0 && currentIndex + by < count) {
                currentIndex += by;
                stop = by > 0 ? -1 : stopsOf(currentIndex) - 1;
            }
            bring();
        }
        function bring(): void {
            const item = itemAtIndex(currentIndex) as FoundMeeting;
            const part = item?.stopItem(stop);
            if (!part) return;
            const top = part.mapToItem(contentItem, 0, 0).y;
            if (top < contentY) contentY = Math.max(originY - topMargin, top - 10);
            else if (top + part.height > contentY + height) contentY = top + part.height - height + 10;
        }
        function open(): void {
            if (currentIndex < 0) return;
            if (stop < 0) root.opened(root.store.list.idAt(currentIndex));
            else (itemAtIndex(currentIndex) as FoundMeeting)?.open(stop);
        }
        function look(): void {
            if (root.search.searching) root.search.lookFrom(Math.max(0, indexAt(0, contentY + topMargin + 1)));
        }

        anchors { left: parent.left; right: parent.right; bottom: foot.top; top: above.bottom }
        clip: true
        reuseItems: true
        cacheBuffer: 0 // rows are reused; spare ones would only delay the first picture
        topMargin: 4
        bottomMargin: 20
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightMoveDuration: 0
        activeFocusOnTab: true
        currentIndex: -1
        model: root.store.list
        Accessible.role: Accessible.List
        Accessible.name: L.t("meetings.title")
        ScrollBar.vertical: ScrollThumb { }
        onCurrentIndexChanged: stop = -1
        onContentYChanged: look()
        onCountChanged: look()
        onAtYEndChanged: if (atYEnd && count > 0) root.search.more()
        Keys.onReturnPressed: open()
        Keys.onEnterPressed: open()
        Keys.onUpPressed: step(-1)
        Keys.onDownPressed: step(1)
        Keys.onEscapePressed: event => {
            event.accepted = root.search.searching;
            if (event.accepted) root.find();
        }
        Keys.onPressed: event => {
            if (event.key === Qt.Key_Home) currentIndex = 0;
            else if (event.key === Qt.Key_End) currentIndex = count - 1;
            else if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) {
                ScrollKeys.take(list, event);
                const at = list.indexAt(0, list.contentY + (event.key === Qt.Key_PageUp ? 40 : list.height - 40));
                if (at >= 0) currentIndex = at;
            } else if (!ScrollKeys.take(list, event)) return;
            event.accepted = true;
        }
        onActiveFocusChanged: if (activeFocus && Look.typing && !root.beginning && currentIndex < 0 && count > 0) currentIndex = 0

        section.property: "day"
        delegate: FoundMeeting {
            width: list.width
            ListView.onPooled: visible = false // else it is told of as if it were still there
            ListView.onReused: visible = true
            search: root.search
            dayText: root.store.list.today && (day.length > 0 ? root.store.list.dayTitle(day, L.language) : "")
            first: ListView.section !== ListView.previousSection
            stop: list.activeFocus && index === list.currentIndex ? list.stop : -2
            unfolded: list.unfolded[meetingId] === true
            onOpened: {
                list.currentIndex = index;
                root.opened(meetingId);
            }
            onPlaceOpened: (place, stop) => {
                list.currentIndex = index;
                list.stop = stop;
                root.placeOpened(meetingId, place);
            }
            onUnfold: {
                list.unfolded[meetingId] = true;
                list.unfoldedChanged();
            }
        }
        add: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.base } }
        displaced: Transition { enabled: Theme.motion; NumberAnimation { property: "y"; duration: Theme.base; easing.type: Easing.OutCubic } }
    }
    KeptPlace {
        list: list
        memory: root.memory
        key: "meetings"
    }
    Item { // why not everything is found
        id: foot
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: trouble.text.length > 0 ? Theme.grown(40) : 0
        visible: height > 0
        Rectangle {
            width: parent.width
            height: Theme.hair
            color: Theme.line
        }
        Spinner {
            id: spinner
            anchors { left: parent.left; leftMargin: Theme.padMain; verticalCenter: parent.verticalCenter }
            visible: root.search.building && foot.visible
            ink: Theme.inkCyan
        }
        Label {
            id: trouble
            anchors { left: spinner.visible ? spinner.right : parent.left; leftMargin: spinner.visible ? 9 : Theme.padMain; verticalCenter: parent.verticalCenter }
            width: parent.width - x - Theme.padMain
            type: Theme.sub
            color: Theme.text2
            elide: Text.ElideRight
            text: root.search.searching && root.search.revision >= 0 ? root.search.trouble(L.language) : ""
            Accessible.role: Accessible.StatusBar
        }
    }
    Column {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: -30
        visible: root.store.loaded && list.count === 0 && root.search.settled
        spacing: 14
        EmptyPane {
            anchors.horizontalCenter: parent.horizontalCenter
            symbol: root.search.searching ? "magnifyingglass" : "calendar.badge.clock"
            text: root.store.list.empty ? L.t("meetings.empty") : L.t("meetings.nothing_found")
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 8
            Repeater {
                model: root.search.searching ? root.search.waysOut : []
                delegate: PillButton {
                    required property searchWayOut modelData

                    kind: modelData.query.length > 0 ? PillButton.Tinted : PillButton.Secondary
                    buttonHeight: Theme.buttonHeight
                    text: L.t(modelData.key, modelData.query.length > 0 ? modelData.query : L.count("search.meetings", modelData.meetings))
                    onClicked: {
                        root.search.takeWayOut(modelData);
                        field.forceActiveFocus(Qt.OtherFocusReason);
                    }
                }
            }
        }
    }
}
