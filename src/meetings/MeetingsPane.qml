pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Meetings
import Murmeli.Ui

// All meetings, day by day, and the search in them.
Item {
    id: root

    required property MeetingStore store
    property ViewMemory memory: null
    property bool beginning: false
    default property alias notice: above.data // what is said above the list

    signal opened(string id)

    function search(): void {
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
        if (row >= 0) list.currentIndex = row;
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
        text: root.store.list.query
        onTextChanged: root.store.list.query = text
        Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)
    }
    Column {
        id: above
        anchors { left: parent.left; right: parent.right; top: heading.bottom; topMargin: 12 }
        leftPadding: 20
    }
    ListView {
        id: list
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; top: above.bottom }
        clip: true
        reuseItems: true
        cacheBuffer: 0 // rows are reused; spare ones would only delay the first picture
        topMargin: 4
        bottomMargin: 20
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: true
        highlightMoveDuration: 0
        activeFocusOnTab: true
        currentIndex: -1
        model: root.store.list
        Accessible.role: Accessible.List
        Accessible.name: L.t("meetings.title")
        ScrollBar.vertical: ScrollThumb { }
        Keys.onReturnPressed: if (currentIndex >= 0) root.opened(root.store.list.idAt(currentIndex))
        Keys.onEnterPressed: if (currentIndex >= 0) root.opened(root.store.list.idAt(currentIndex))
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
        delegate: MeetingRow {
            required property int index
            required property string meetingId
            required property string day

            width: list.width
            ListView.onPooled: visible = false // else it is told of as if it were still there
            ListView.onReused: visible = true
            dayText: root.store.list.today && root.store.list.dayTitle(day, L.language)
            first: ListView.section !== ListView.previousSection
            current: list.activeFocus && index === list.currentIndex
            onOpened: {
                list.currentIndex = index;
                root.opened(meetingId);
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
    EmptyPane {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: -30
        visible: root.store.loaded && list.count === 0
        text: root.store.list.empty ? L.t("meetings.empty") : L.t("meetings.nothing_found")
    }
}
