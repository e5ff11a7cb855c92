import QtQuick
import QtQuick.Layouts
import Murmeli.Account
import Murmeli.Localisation
import Murmeli.Panel
import Murmeli.Service
import Murmeli.Ui

// Where protocols are delivered, and whose account it is.
ColumnLayout {
    id: root

    required property PanelModel panel
    required property AuthManager account
    required property AppState appState

    signal addressAsked(Item card)

    spacing: Theme.gapGroup

    Card {
        Layout.fillWidth: true

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.padPanel
            Layout.rightMargin: Theme.padPanel
            Layout.preferredHeight: Theme.grown(42)
            spacing: 10
            Symbol {
                Layout.preferredWidth: Theme.symbolRow
                Layout.preferredHeight: Theme.symbolRow
                size: Theme.symbolRow
                name: "paperplane.fill"
                ink: Theme.text2
            }
            Label {
                Layout.fillWidth: true
                text: L.t("panel.telegram")
            }
            Row {
                visible: root.appState.telegramConnected
                spacing: Theme.gapIcon
                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 6
                    height: 6
                    radius: 3
                    color: Theme.green
                }
                Label {
                    type: Theme.sub
                    color: Theme.text2
                    text: L.t("panel.telegram.connected")
                }
            }
            PillButton {
                visible: !root.appState.telegramConnected
                kind: PillButton.Tinted
                text: L.t("panel.telegram.connect")
                help: L.t("telegram.title")
                onClicked: root.panel.botRequested()
            }
        }
        Rectangle {
            Layout.fillWidth: true
            visible: whose.visible
            implicitHeight: Theme.hair
            color: Theme.line
        }
        RowLayout {
            id: whose
            Layout.fillWidth: true
            Layout.leftMargin: Theme.padPanel
            Layout.rightMargin: Theme.gapSmall
            Layout.preferredHeight: root.account.isAuthed ? Math.max(56, lines.implicitHeight + 16) : 36
            visible: root.account.isAuthed || root.appState.telegramConnected
            spacing: 10
            Symbol {
                Layout.preferredWidth: 18
                Layout.preferredHeight: 18
                visible: root.account.isAuthed
                size: 18
                name: "person.crop.circle"
                ink: Theme.text2
            }
            ColumnLayout {
                id: lines
                Layout.fillWidth: true
                spacing: 0
                Label {
                    Layout.fillWidth: true
                    visible: root.account.isAuthed
                    text: L.t("panel.account")
                }
                Label {
                    Layout.fillWidth: true
                    visible: root.account.email.length > 0
                    type: Theme.caption
                    color: Theme.text2
                    elide: Text.ElideMiddle
                    text: root.account.email
                }
                RowLayout {
                    visible: root.appState.telegramConnected
                    spacing: Theme.gapSmall
                    Symbol {
                        Layout.preferredWidth: Theme.symbolSmall
                        Layout.preferredHeight: Theme.symbolSmall
                        size: Theme.symbolSmall
                        name: "checkmark.seal.fill"
                        ink: Theme.inkGreen
                    }
                    Label {
                        type: Theme.caption
                        color: Theme.text2
                        text: L.t("panel.telegram.account")
                    }
                }
            }
            IconButton {
                visible: root.account.isAuthed
                symbol: "rectangle.portrait.and.arrow.right"
                help: L.t("panel.sign_out")
                onClicked: root.account.logout()
            }
        }
    }
    PillButton {
        Layout.fillWidth: true
        visible: !root.account.isAuthed
        kind: root.appState.authFlag ? PillButton.Primary : PillButton.Tinted
        buttonHeight: Theme.buttonLarge
        symbol: "person.crop.circle"
        symbolSize: Theme.symbolRow
        text: L.t("panel.sign_in")
        onClicked: root.account.login()
    }
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    Loader { // few sign in twice
        Layout.fillWidth: true
        active: root.account.takesAddress && !root.account.isAuthed
        visible: active
        sourceComponent: PasteAddress { account: root.account }
        onLoaded: root.addressAsked(item)
    }
    // qmllint enable unqualified
}
