import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Protocol
import Murmeli.Ui

// Every change of the protocol with its undo, or all of it against what it was at first.
Item {
    id: root

    required property ProtocolChanges changes
    required property string meetingTitle

    signal closed()

    function focusFirst(): void {
        header.focusFirst();
    }

    Keys.onEscapePressed: root.closed()
    Keys.onPressed: event => event.accepted = ScrollKeys.take(list, event)

    PaneHeader {
        id: header
        width: parent.width
        title: L.t("ledger.title")
        line: root.meetingTitle + L.t("common.dot") + root.changes.counts
        closeHelp: L.t("common.close")
        onClosed: root.closed()

        PillButton {
            buttonHeight: Theme.buttonHeight
            kind: root.changes.comparing ? PillButton.Tinted : PillButton.Secondary
            text: L.t("ledger.compare")
            Accessible.checkable: true
            Accessible.checked: root.changes.comparing
            onClicked: root.changes.comparing = !root.changes.comparing
        }
    }
    ListView {
        id: list

        property bool atTop: true

        anchors { left: parent.left; right: parent.right; top: header.bottom; bottom: parent.bottom }
        clip: true
        bottomMargin: 36
        onOriginYChanged: if (atTop) contentY = originY // the note above the rows has come
        onContentYChanged: atTop = contentY <= originY + 1
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        currentIndex: -1
        activeFocusOnTab: true
        model: root.changes
        Accessible.role: Accessible.List
        Accessible.name: L.t("ledger.title")
        ScrollBar.vertical: ScrollThumb { }
        onActiveFocusChanged: if (activeFocus && currentIndex < 0 && count > 0) currentIndex = 0
        Keys.onUpPressed: {
            currentIndex = Math.max(0, currentIndex - 1);
            positionViewAtIndex(currentIndex, ListView.Contain);
        }
        Keys.onDownPressed: {
            currentIndex = Math.min(count - 1, currentIndex + 1);
            positionViewAtIndex(currentIndex, ListView.Contain);
        }

        // Bound as a whole, the file could not have its notes here.
        // qmllint disable unqualified
        header: Item {
            width: ListView.view.width
            height: notes.height + 18
            Column {
                id: notes
                x: Theme.padMain
                y: 18
                width: parent.width - 2 * Theme.padMain
                bottomPadding: root.changes.overwrittenCount > 0 || root.changes.unreadable || told.visible ? 14 : 0
                spacing: Theme.gapRow
                OverwrittenNote {
                    width: parent.width
                    visible: root.changes.overwrittenCount > 0
                    changes: root.changes
                }
                Label {
                    id: told
                    width: parent.width
                    visible: !root.changes.message.empty
                    type: Theme.sub
                    color: root.changes.failed ? Theme.inkRed : Theme.text2
                    wrapMode: Text.Wrap
                    maximumLineCount: 3
                    elide: Text.ElideRight
                    text: L.say(root.changes.message)
                    Accessible.role: root.changes.failed ? Accessible.AlertMessage : Accessible.StatusBar
                }
                Label {
                    width: parent.width
                    visible: root.changes.unreadable
                    type: Theme.sub
                    color: Theme.inkPink
                    wrapMode: Text.Wrap
                    text: L.t("ledger.unreadable")
                    Accessible.role: Accessible.AlertMessage
                }
            }
        }
        delegate: ChangeRowView {
            required property int index

            x: Theme.padMain
            width: ListView.view.width - 2 * Theme.padMain
            first: index === 0
            last: index === list.count - 1
            current: list.activeFocus && list.currentIndex === index
            onUndoAsked: root.changes.undo(index)
            onRedoAsked: root.changes.redo(index)
            onCopyAsked: root.changes.copyBefore(index)
        }
        // qmllint enable unqualified
        FocusRing { shown: list.activeFocus && list.count === 0; corner: Theme.rSmall; gap: -Theme.focusWidth * 2 }
    }
}
