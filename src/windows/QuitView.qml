import QtQuick
import QtQuick.Window
import Murmeli.Localisation
import Murmeli.Service
import Murmeli.Ui
import Murmeli.Windows

// Asks what is to become of the recording that runs.
Rectangle {
    id: root

    required property QuitQuestion question
    required property RecordControl record

    color: Theme.bgWindow
    Component.onCompleted: stay.forceActiveFocus(Qt.OtherFocusReason)

    Symbol {
        id: sign
        x: Theme.padUpdate
        y: Theme.padUpdate
        size: 25
        name: "exclamationmark.triangle"
        ink: Theme.inkRed
    }
    Column {
        anchors { left: sign.right; leftMargin: Theme.padCard; right: parent.right; rightMargin: Theme.padUpdate }
        y: Theme.padUpdate
        spacing: Theme.gapSmall
        Label {
            width: parent.width
            type: Theme.title
            text: L.t("quit.title")
            Accessible.role: Accessible.Heading
        }
        Label {
            width: parent.width
            type: Theme.body
            color: root.record.refused ? Theme.inkRed : Theme.text2
            wrapMode: Text.Wrap
            text: root.record.refused ? L.t("record.refused") : L.t("quit.body")
            Accessible.role: root.record.refused ? Accessible.AlertMessage : Accessible.StaticText
        }
    }
    Row {
        anchors { right: parent.right; bottom: parent.bottom; margins: Theme.padUpdate }
        spacing: Theme.gapGroup
        PillButton {
            id: stay
            buttonHeight: Theme.buttonHeight
            text: L.t("quit.stay")
            onClicked: root.Window.window.close()
        }
        PillButton {
            buttonHeight: Theme.buttonHeight
            text: L.t("quit.leave")
            onClicked: root.question.quit()
        }
        PillButton {
            kind: PillButton.Primary
            buttonHeight: Theme.buttonHeight
            text: L.t("quit.stop")
            onClicked: root.question.stopAndQuit()
        }
    }
}
