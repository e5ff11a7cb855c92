import QtQuick
import QtQuick.Layouts
import Murmeli.Account
import Murmeli.Localisation
import Murmeli.Ui

// For browsers that do not hand the sign-in's address over to us.
Card {
    id: root

    required property AuthManager account

    ColumnLayout {
        Layout.fillWidth: true
        Layout.margins: Theme.padPanel
        spacing: Theme.gapRow

        RowLayout {
            spacing: Theme.gapSmall
            Label {
                Layout.fillWidth: true
                type: Theme.caption
                color: root.account.addressRefused ? Theme.inkPink : Theme.text2
                wrapMode: Text.Wrap
                text: root.account.addressRefused ? L.t("account.paste.refused") : L.t("account.paste.hint")
                Accessible.role: Accessible.StatusBar
            }
            IconButton {
                Layout.alignment: Qt.AlignTop
                symbol: "xmark"
                symbolSize: Theme.symbolSmall
                side: Theme.buttonSmall
                round: true
                help: L.t("account.paste.cancel")
                onClicked: root.account.cancelLogin()
            }
        }
        RowLayout {
            spacing: Theme.gapRow
            Field {
                id: field
                Layout.fillWidth: true
                name: L.t("account.paste.name")
                placeholderText: "murmeli:"
                onAccepted: root.account.paste(text)
                onTextChanged: root.account.typedAddress = text
                Component.onCompleted: text = root.account.typedAddress
            }
            PillButton {
                kind: PillButton.Tinted
                buttonHeight: Theme.buttonHeight
                enabled: field.text.length > 0
                text: L.t("account.paste.action")
                onClicked: root.account.paste(field.text)
            }
        }
    }
}
