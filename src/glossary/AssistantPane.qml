pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Account
import Murmeli.Glossary
import Murmeli.Localisation
import Murmeli.Meetings
import Murmeli.Ui

// The editor of the glossary.
Item {
    id: root

    required property AuthManager account
    required property AssistantModel model
    required property GlossaryStore store
    property ViewMemory memory: null
    readonly property bool savedOnce: !isNaN(store.savedAt.getTime())

    function add(): void {
        if (!root.model.add(heard.text, correct.text)) return;
        heard.clear();
        correct.clear();
        heard.forceActiveFocus(Qt.OtherFocusReason);
    }
    function search(): void {
        field.forceActiveFocus(Qt.ShortcutFocusReason);
    }

    Shortcut { sequence: "Ctrl+S"; enabled: root.enabled; onActivated: root.model.save() }

    Label {
        id: heading
        x: Theme.padMain
        y: 26 + Theme.chromeInset
        type: Theme.display
        text: L.t("assistant.title")
        Accessible.role: Accessible.Heading
    }
    SearchField {
        id: field
        anchors { right: parent.right; rightMargin: Theme.padMain; verticalCenter: heading.verticalCenter }
        name: L.t("meetings.search")
        clearName: L.t("meetings.search.clear")
        placeholderText: L.t("meetings.search")
        text: root.model.query
        onTextChanged: root.model.query = text
    }
    Label {
        id: intro
        anchors { left: heading.left; top: heading.bottom; topMargin: 12 }
        width: Math.min(560, root.width - 2 * Theme.padMain)
        type: Theme.running
        color: Theme.text2
        wrapMode: Text.Wrap
        text: L.t("assistant.intro")
    }
    Row {
        id: adding
        anchors { left: heading.left; right: parent.right; rightMargin: Theme.padMain; top: intro.bottom; topMargin: 16 }
        spacing: Theme.gapRow
        readonly property real fieldWidth: (width - arrow.width - button.width - 3 * spacing) / 2

        Field {
            id: heard
            width: adding.fieldWidth
            height: Theme.grown(34)
            name: L.t("assistant.placeholder.heard")
            text: root.memory?.kept("heard", "") ?? ""
            onTextChanged: root.memory?.keep("heard", text)
            placeholderText: L.t("assistant.placeholder.heard")
            onAccepted: correct.forceActiveFocus(Qt.TabFocusReason)
        }
        Symbol {
            id: arrow
            anchors.verticalCenter: parent.verticalCenter
            size: Theme.symbolText
            name: "arrow.right"
            ink: Theme.text3
        }
        Field {
            id: correct
            width: adding.fieldWidth
            height: Theme.grown(34)
            name: L.t("assistant.placeholder.correct")
            text: root.memory?.kept("correct", "") ?? ""
            onTextChanged: root.memory?.keep("correct", text)
            placeholderText: L.t("assistant.placeholder.correct")
            onAccepted: root.add()
        }
        PillButton {
            id: button
            anchors.verticalCenter: parent.verticalCenter
            kind: correct.text.trim().length > 0 ? PillButton.Tinted : PillButton.Secondary
            buttonHeight: Theme.buttonHeight
            text: L.t("assistant.add")
            spokenName: L.t("assistant.add.name")
            onClicked: root.add()
        }
    }
    Rectangle {
        id: card
        anchors { left: heading.left; right: parent.right; rightMargin: Theme.padMain; top: adding.bottom; topMargin: 18 }
        height: Math.min(list.contentHeight, footer.y - y - 18)
        visible: list.count > 0
        radius: Theme.rCard
        color: Theme.bgCard
        border.width: Theme.hair
        border.color: Theme.line
        clip: true

        ListView {
            id: list
            anchors.fill: parent
            clip: true
            reuseItems: true
            boundsBehavior: Flickable.StopAtBounds
            highlightMoveDuration: 0
            currentIndex: -1
            activeFocusOnTab: count > 0
            model: root.model
            Accessible.role: Accessible.List
            Accessible.name: L.t("assistant.title")
            ScrollBar.vertical: ScrollThumb { }
            onActiveFocusChanged: if (activeFocus && currentIndex < 0) currentIndex = 0
            Keys.onDeletePressed: root.model.removeAt(currentIndex)
            delegate: GlossaryRow {
                id: row

                required property int index

                width: list.width
                ListView.onPooled: visible = false // else it is told of as if it were still there
                ListView.onReused: visible = true
                current: list.activeFocus && index === list.currentIndex
                onRemoved: root.model.removeAt(index)
                onActiveFocusChanged: if (activeFocus) list.currentIndex = index // a screen reader may give it to any
                Rectangle {
                    width: parent.width
                    height: Theme.hair
                    visible: row.index > 0
                    color: Theme.line
                }
            }
            add: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.base } }
            displaced: Transition { enabled: Theme.motion; NumberAnimation { property: "y"; duration: Theme.base; easing.type: Easing.OutCubic } }
        }
    }
    KeptPlace {
        list: list
        memory: root.memory
        key: "glossary"
    }
    EmptyPane {
        anchors.horizontalCenter: parent.horizontalCenter
        y: (adding.y + adding.height + footer.y - height) / 2
        visible: list.count === 0 && (root.store.known || root.model.total > 0)
        symbol: "brain"
        text: root.model.total === 0 ? L.t("assistant.empty") : L.t("meetings.nothing_found")
        SignInLink {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: !account.isAuthed && root.model.total === 0
            account: root.account
        }
    }
    Rectangle {
        id: footer
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: Math.max(58, news.height + 16)
        color: Theme.clear

        Rectangle {
            width: parent.width
            height: Theme.hair
            color: Theme.line
        }
        Row {
            id: news
            anchors { left: parent.left; leftMargin: Theme.padMain; verticalCenter: parent.verticalCenter }
            anchors { right: actions.left; rightMargin: Theme.padCard }
            spacing: Theme.gapRow
            Label {
                anchors.verticalCenter: parent.verticalCenter
                type: Theme.sub
                color: Theme.text3
                text: L.t("assistant.count", root.model.total)
            }
            Spinner {
                anchors.verticalCenter: parent.verticalCenter
                visible: root.store.loading || root.model.saving
            }
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                visible: status.text.length > 0 && !root.store.loading
                size: Theme.symbolText
                name: !root.store.syncError.empty ? "exclamationmark.triangle" : "checkmark.circle.fill"
                ink: !root.store.syncError.empty ? Theme.inkRed : Theme.inkGreen
            }
            Column {
                anchors.verticalCenter: parent.verticalCenter
                Label {
                    id: status
                    width: Math.min(implicitWidth, news.width - parent.x)
                    maximumLineCount: 2
                    wrapMode: Text.Wrap
                    elide: Text.ElideRight
                    type: Theme.sub
                    color: !root.store.syncError.empty ? Theme.inkRed : Theme.text2
                    text: root.store.loading ? L.t("assistant.loading") : !root.store.syncError.empty ? L.say(root.store.syncError)
                        : root.savedOnce && !root.model.dirty ? L.t("assistant.saved") : ""
                    Accessible.role: Accessible.StatusBar

                    HoverHandler { id: over }
                    HelpTip {
                        wanted: over.hovered && status.truncated
                        text: status.text
                    }
                }
                SignInLink {
                    x: -leftPadding
                    visible: !account.isAuthed && !root.store.syncError.empty
                    account: root.account
                }
            }
        }
        Row {
            id: actions
            anchors { right: parent.right; rightMargin: Theme.padMain; verticalCenter: parent.verticalCenter }
            spacing: Theme.padCard
            PillButton {
                buttonHeight: Theme.buttonHeight
                enabled: root.model.dirty
                text: L.t("assistant.revert")
                onClicked: root.model.revert()
            }
            PillButton {
                kind: PillButton.Primary
                buttonHeight: Theme.buttonHeight
                enabled: root.model.dirty && !root.model.saving
                text: L.t("assistant.save")
                onClicked: root.model.save()
            }
        }
    }
}
