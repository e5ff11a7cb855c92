import QtQuick
import QtQuick.Layouts
import Murmeli.Localisation
import Murmeli.Permissions
import Murmeli.Ui

// The two permissions that a recording needs. The compact form stands inside of other screens.
Column {
    id: root

    required property PermissionsModel model
    property bool compact: false

    signal noted() // a note has appeared, which may be out of sight

    spacing: 0

    Column {
        visible: !root.compact
        width: parent.width
        leftPadding: 2
        bottomPadding: Theme.padPanel
        Label {
            type: Theme.head
            text: L.t("perm.title")
            Accessible.role: Accessible.Heading
        }
        Label {
            type: Theme.sub
            color: Theme.text2
            text: L.t("perm.subtitle")
        }
    }
    Card {
        width: parent.width
        color: Theme.bgCard
        PermissionRow {
            Layout.fillWidth: true
            symbol: "mic.fill"
            title: L.t("perm.microphone.title")
            detail: L.t("perm.microphone.detail")
            permission: root.model.microphone
            asking: root.model.askingMicrophone
            onRequested: root.model.request(PermissionsModel.Microphone)
        }
        Rectangle {
            Layout.fillWidth: true
            implicitHeight: Theme.hair
            color: Theme.line
        }
        PermissionRow {
            Layout.fillWidth: true
            symbol: "rectangle.inset.filled.and.person.filled"
            title: L.t("perm.screen.title")
            detail: L.t("perm.screen.detail")
            permission: root.model.screen
            asking: root.model.askingScreen
            onRequested: root.model.request(PermissionsModel.Screen)
        }
    }
    Item {
        width: parent.width
        height: stale.height + Theme.gapGroup
        visible: root.model.screenLooksStale && root.model.screen !== PermissionsModel.Granted
            && !root.model.settingsMissing
        onVisibleChanged: if (visible) root.noted()
        Callout {
            id: stale
            y: Theme.gapGroup
            width: parent.width
            accent: Theme.pink
            body: Qt.platform.os === "osx" ? L.t("perm.screen.stale") : L.t("perm.screen.stale.linux")
        }
    }
    Item {
        width: parent.width
        height: nowhere.height + Theme.gapGroup
        visible: root.model.settingsMissing && !root.model.allGranted
        onVisibleChanged: if (visible) root.noted()
        Callout {
            id: nowhere
            y: Theme.gapGroup
            width: parent.width
            accent: Theme.pink
            body: L.t("perm.settings.none")
        }
    }
    Row {
        topPadding: 11
        leftPadding: Theme.gapSmall
        spacing: Theme.gapIcon
        Accessible.role: Accessible.StatusBar
        Accessible.name: summary.text
        Symbol {
            size: Theme.symbolText
            name: root.model.allGranted ? "checkmark.seal.fill" : "exclamationmark.triangle"
            ink: root.model.allGranted ? Theme.inkGreen : Theme.inkPink
        }
        Label {
            id: summary
            type: Theme.sub
            text: root.model.allGranted ? L.t("perm.summary.ok") : L.t("perm.summary.missing")
        }
    }
    Label {
        visible: !root.compact
        width: parent.width
        topPadding: 6
        leftPadding: Theme.gapSmall
        type: Theme.caption
        color: Theme.text3
        wrapMode: Text.Wrap
        text: L.t("perm.note")
    }
}
