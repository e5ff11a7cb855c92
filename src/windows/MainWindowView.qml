import QtQuick
import QtQuick.Window
import Murmeli.Detail
import Murmeli.Glossary
import Murmeli.Margin
import Murmeli.Meetings
import Murmeli.Notices
import Murmeli.Search
import Murmeli.Service
import Murmeli.Settings
import Murmeli.Ui
import Murmeli.Windows

// The large window: the sidebar, and beside it the meetings, one of them, or the assistant.
Rectangle {
    id: root

    required property MainModel model
    required property AppState appState
    required property RecordControl record
    required property NoticeBoard board
    readonly property bool onMeetings: model.tab === MainModel.Meetings
    readonly property bool onAssistant: model.tab === MainModel.Assistant
    readonly property bool onSettings: model.tab === MainModel.Settings
    readonly property bool inDetail: onMeetings && model.detail !== null

    readonly property bool shown: Window.window !== null && Window.window.visible

    // The keyboard begins where one reads, never on the button that records.
    onShownChanged: {
        if (!shown) return;
        if (root.inDetail) (detail.item as MeetingDetail)?.focusFirst(); // else when it is loaded
        else if (root.onMeetings) meetings.begin();
        else sidebar.focusTabs();
    }

    function back(): void {
        if (!root.inDetail) return;
        const id = root.model.back();
        meetings.focusList(id);
    }
    function search(): void {
        if (root.inDetail) root.back();
        if (root.onMeetings) meetings.find();
        else if (root.onAssistant) assistant.search();
    }

    color: Theme.bgWindow

    Shortcut {
        sequence: "Ctrl+F"
        onActivated: if (!root.inDetail || !(detail.item as MeetingDetail).search()) root.search()
    }
    Shortcut { sequence: "Ctrl+1"; onActivated: root.model.tab = MainModel.Meetings }
    Shortcut { sequence: "Ctrl+2"; onActivated: root.model.tab = MainModel.Assistant }
    Shortcut { sequence: "Ctrl+3"; onActivated: root.model.tab = MainModel.Settings }
    Shortcut { sequence: "Alt+Left"; onActivated: if (root.inDetail) (detail.item as MeetingDetail).back() }

    Sidebar {
        id: sidebar
        height: parent.height
        model: root.model
        appState: root.appState
        record: root.record
        board: root.board
    }
    Item {
        id: content
        anchors { left: sidebar.right; right: parent.right; top: parent.top; bottom: parent.bottom }
        clip: true

        MeetingsPane {
            id: meetings
            width: parent.width
            height: parent.height
            store: root.model.store
            search: root.model.search
            memory: root.model.views
            enabled: root.onMeetings && !root.inDetail
            visible: enabled || opacity > 0
            opacity: enabled ? 1 : 0
            x: root.inDetail ? -Theme.slide : 0
            onOpened: id => root.model.open(id)
            onPlaceOpened: (id, place) => root.model.openAt(id, place)

            HomelessSection {
                width: parent.width - 40
                homeless: root.model.homeless
            }

            Behavior on opacity { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
            Behavior on x { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        }
        Loader {
            id: detail
            width: parent.width
            height: parent.height
            active: root.model.detail !== null
            visible: root.inDetail
            // Loaders take no bound components yet.
            // qmllint disable unqualified
            sourceComponent: MeetingDetail {
                detail: root.model.detail
                onClosed: root.back()
            }
            // qmllint enable unqualified
            onLoaded: {
                appear.restart();
                (item as MeetingDetail).focusFirst();
            }
            ParallelAnimation {
                id: appear
                NumberAnimation { target: detail; property: "opacity"; from: 0; to: 1; duration: Theme.swap; easing.type: Easing.OutCubic }
                NumberAnimation { target: detail; property: "x"; from: Theme.slide; to: 0; duration: Theme.swap; easing.type: Easing.OutCubic }
            }
        }
        AssistantPane {
            id: assistant
            width: parent.width
            height: parent.height
            account: root.model.account
            model: root.model.assistant
            store: root.model.glossary
            memory: root.model.views
            enabled: root.onAssistant
            visible: enabled
        }
        // Loaders take no bound components yet.
        // qmllint disable unqualified
        Loader {
            width: parent.width
            height: parent.height
            active: root.onSettings
            enabled: root.onSettings
            visible: enabled
            sourceComponent: SettingsView { model: root.model.settings; memory: root.model.views }
        }
        // qmllint enable unqualified
    }
}
