import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Receipts
import Murmeli.Ui

// What has left this computer, of one meeting with its lock, or of all.
Item {
    id: root

    required property SentModel sent
    property string meetingLine // of the meeting; empty for all
    property bool locked: false
    property bool lockKnown: true
    readonly property bool ofMeeting: meetingLine.length > 0

    signal lockAsked(bool locked)
    signal closed()

    function focusFirst(): void {
        header.focusFirst();
    }

    Keys.onEscapePressed: root.closed()
    Keys.onPressed: event => event.accepted = ScrollKeys.take(list, event)

    PaneHeader {
        id: header
        width: parent.width
        title: L.t("sent.title")
        line: root.meetingLine
        closeHelp: L.t("common.close")
        onClosed: root.closed()
    }
    ListView {
        id: list

        property bool atTop: true

        anchors { left: parent.left; right: parent.right; top: header.bottom; bottom: parent.bottom }
        clip: true
        bottomMargin: 36
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        currentIndex: -1
        activeFocusOnTab: count > 0
        model: root.sent
        Accessible.role: Accessible.List
        Accessible.name: L.t("sent.title")
        ScrollBar.vertical: ScrollThumb { }
        onOriginYChanged: if (atTop) contentY = originY // the rows have come
        onContentYChanged: atTop = contentY <= originY + 1
        onActiveFocusChanged: if (activeFocus && currentIndex < 0 && count > 0) currentIndex = 0
        Keys.onUpPressed: {
            currentIndex = Math.max(0, currentIndex - 1);
            positionViewAtIndex(currentIndex, ListView.Contain);
        }
        Keys.onDownPressed: {
            currentIndex = Math.min(count - 1, currentIndex + 1);
            positionViewAtIndex(currentIndex, ListView.Contain);
        }

        // Bound as a whole, the file could not have its lock here.
        // qmllint disable unqualified
        header: Column {
            x: Theme.padMain
            width: list.width - 2 * Theme.padMain
            topPadding: root.ofMeeting ? 18 : 0
            Rectangle {
                width: parent.width
                height: Math.max(Theme.rowHeight, lockTexts.height + 20)
                visible: root.ofMeeting
                radius: Theme.rCard
                color: Theme.bgCard
                border.width: Theme.hair
                border.color: Theme.line
                IconTile {
                    id: tile
                    anchors { left: parent.left; leftMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
                    symbol: "lock"
                }
                Column {
                    id: lockTexts
                    anchors { left: tile.right; leftMargin: Theme.padPanel; right: lock.left; rightMargin: Theme.padPanel; verticalCenter: parent.verticalCenter }
                    Label {
                        width: parent.width
                        type: Theme.label
                        text: L.t("lock.title")
                        Accessible.ignored: true
                    }
                    Label {
                        width: parent.width
                        type: Theme.sub
                        color: Theme.text2
                        wrapMode: Text.Wrap
                        text: root.lockKnown ? L.t("lock.subtitle") : L.t("lock.unknown")
                        Accessible.ignored: true
                    }
                }
                Toggle {
                    id: lock
                    anchors { right: parent.right; rightMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
                    on: root.locked
                    enabled: root.lockKnown
                    name: L.t("lock.title")
                    description: L.t("lock.subtitle")
                    onChosen: on => root.lockAsked(on)
                }
            }
            Label {
                width: parent.width
                visible: root.ofMeeting
                leftPadding: 4
                topPadding: 18
                bottomPadding: 8
                type: Theme.heading
                color: Theme.text2
                text: L.t("sent.by_murmeli")
                Accessible.role: Accessible.Heading
            }
            Label {
                width: parent.width
                visible: root.sent.loaded && root.sent.total === 0 && !root.sent.unreadable
                leftPadding: 4
                topPadding: root.ofMeeting ? 0 : 18
                color: Theme.text2
                text: L.t("sent.nothing")
                Accessible.role: Accessible.StatusBar
            }
            Label {
                width: parent.width
                visible: root.sent.unreadable
                leftPadding: 4
                topPadding: 4
                bottomPadding: 8
                type: Theme.sub
                color: Theme.inkPink
                wrapMode: Text.Wrap
                text: L.t("sent.unreadable")
                Accessible.role: Accessible.AlertMessage
            }
        }
        delegate: SentRowView {
            required property int index

            x: Theme.padMain
            width: list.width - 2 * Theme.padMain
            current: list.activeFocus && list.currentIndex === index
        }
        footer: Label {
            x: Theme.padMain + 4
            width: Math.min(600, list.width - 2 * Theme.padMain - 8)
            topPadding: 14
            type: Theme.caption
            color: Theme.text3
            wrapMode: Text.Wrap
            text: L.t("sent.note")
        }
        // qmllint enable unqualified
    }
}
