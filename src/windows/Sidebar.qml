pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Notices
import Murmeli.Service
import Murmeli.Ui
import Murmeli.Windows

// Murmeli's name, the record button and the tabs.
Rectangle {
    id: root

    required property MainModel model
    required property AppState appState
    required property RecordControl record
    required property NoticeBoard board
    readonly property var tabs: [
        { tab: MainModel.Meetings, symbol: "calendar", key: "tab.meetings" },
        { tab: MainModel.Assistant, symbol: "brain", key: "tab.assistant" },
        { tab: MainModel.Settings, symbol: "wrench.and.screwdriver", key: "tab.settings" }
    ]

    function focusTabs(): void {
        list.forceActiveFocus(Qt.OtherFocusReason);
    }

    implicitWidth: Theme.sidebarWidth
    color: Theme.bgSide

    Rectangle {
        anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
        width: Theme.hair
        color: Theme.line
    }
    Row {
        id: brand
        x: 20
        y: 36 + Theme.chromeInset
        spacing: Theme.gapGroup
        Rectangle {
            width: 28
            height: 28
            radius: 8.5
            gradient: Gradient {
                orientation: Gradient.Horizontal
                GradientStop { position: 0; color: Theme.badgeFrom }
                GradientStop { position: 1; color: Theme.badgeTo }
            }
            Symbol {
                anchors.centerIn: parent
                size: 16
                name: "waveform"
                ink: Theme.white
            }
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            type: Theme.head
            text: "Murmeli"
        }
    }
    Column {
        id: recording
        x: Theme.padCard
        anchors { top: brand.bottom; topMargin: 18 }
        width: parent.width - 2 * Theme.padCard
        spacing: Theme.gapRow
        RecordButton {
            width: parent.width
            appState: root.appState
            record: root.record
        }
        Label {
            width: parent.width
            visible: text.length > 0
            type: Theme.caption
            color: root.record.refused || root.board.lineFails ? Theme.inkRed : Theme.inkPink
            wrapMode: Text.Wrap
            text: root.record.refused ? L.t("record.refused") : root.board.line
            Accessible.role: Accessible.AlertMessage
        }
    }
    Column {
        id: list
        x: Theme.padCard
        anchors { top: recording.bottom; topMargin: 20 }
        width: parent.width - 2 * Theme.padCard
        spacing: 2
        activeFocusOnTab: true
        Accessible.role: Accessible.PageTabList
        Accessible.name: L.t("main.sections") + ", " + L.t(root.tabs[root.model.tab].key) // the arrows change it here
        Keys.onUpPressed: root.model.tab = Math.max(0, root.model.tab - 1)
        Keys.onDownPressed: root.model.tab = Math.min(root.tabs.length - 1, root.model.tab + 1)

        Repeater {
            model: root.tabs
            delegate: Rectangle {
                id: row

                required property var modelData
                readonly property bool selected: root.model.tab === modelData.tab

                width: list.width
                height: Theme.grown(34)
                radius: Theme.rField
                color: selected ? Theme.fill : area.pressed ? Theme.press : area.containsMouse ? Theme.hover : Theme.clear
                Accessible.role: Accessible.PageTab
                Accessible.name: label.text
                Accessible.selected: selected
                Accessible.onPressAction: root.model.tab = modelData.tab

                MouseArea {
                    id: area
                    anchors.fill: parent
                    hoverEnabled: true
                    Accessible.ignored: true
                    onClicked: root.model.tab = row.modelData.tab
                }
                Symbol {
                    id: glyph
                    x: 10
                    anchors.verticalCenter: parent.verticalCenter
                    size: Theme.symbolRow
                    name: row.modelData.symbol
                    ink: row.selected ? Theme.inkViolet : label.color
                }
                Label {
                    id: label
                    anchors { left: glyph.right; leftMargin: 10; verticalCenter: parent.verticalCenter }
                    color: row.selected || area.containsMouse ? Theme.text1 : Theme.text2
                    text: L.t(row.modelData.key)
                    Accessible.ignored: true
                }
                FocusRing { shown: list.activeFocus && row.selected; corner: Theme.rField }
            }
        }
    }
}
