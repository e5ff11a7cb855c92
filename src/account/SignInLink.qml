import QtQuick
import Murmeli.Account
import Murmeli.Localisation
import Murmeli.Ui

// The way out of a sentence that asks to sign in.
LinkButton {
    required property AuthManager account

    visible: !account.isAuthed
    symbol: "person.crop.circle"
    text: L.t("panel.sign_in")
    onClicked: account.login()
}
