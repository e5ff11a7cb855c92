import QtQuick
import Murmeli.Localisation
import Murmeli.Ui
import Murmeli.Update

// What can be done about the update, and when it was last looked for.
Item {
    id: root

    required property Updater updater
    readonly property bool checking: updater.phase === Updater.Checking
    readonly property bool known: !isNaN(updater.lastChecked.getTime())

    function focusFirst(): void {
        (install.visible && install.enabled ? install : reveal.visible ? reveal : check).forceActiveFocus(Qt.OtherFocusReason);
    }

    implicitHeight: managed.visible ? 74 + managed.height : 66

    Rectangle {
        width: parent.width
        height: Theme.hair
        color: Theme.line
    }
    Label {
        id: managed
        anchors { left: parent.left; leftMargin: Theme.padUpdate; right: parent.right; rightMargin: Theme.padUpdate }
        y: Theme.padPanel
        visible: root.updater.available && root.updater.packageManaged
        type: Theme.sub
        color: Theme.text2
        wrapMode: Text.Wrap
        text: L.t("update.managed")
    }
    Row {
        id: buttons
        anchors { left: parent.left; leftMargin: Theme.padUpdate; bottom: parent.bottom; bottomMargin: 15 }
        spacing: Theme.gapGroup
        PillButton {
            id: install
            visible: root.updater.canInstall
            enabled: !root.updater.busy
            busy: root.updater.busy
            kind: PillButton.Primary
            buttonHeight: Theme.buttonLarge
            text: root.updater.busy ? L.t("update.action.installing") : L.t("update.action.install")
            onClicked: root.updater.runUpdate()
        }
        PillButton {
            id: reveal
            visible: root.updater.runningFromDiskImage
            kind: PillButton.Primary
            buttonHeight: Theme.buttonLarge
            text: L.t("update.action.reveal")
            onClicked: root.updater.reveal()
        }
        PillButton {
            id: check
            enabled: !root.checking
            busy: root.checking
            buttonHeight: Theme.buttonLarge
            text: root.checking ? L.t("update.action.checking") : L.t("update.action.check")
            onClicked: root.updater.check()
        }
    }
    Label {
        anchors { right: parent.right; rightMargin: Theme.padUpdate; verticalCenter: buttons.verticalCenter }
        visible: root.known
        type: Theme.caption
        color: Theme.text3
        text: root.known ? L.t("update.checked_at", root.updater.timeText(root.updater.lastChecked, L.language)) : ""
    }
}
