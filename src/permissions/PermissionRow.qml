import QtQuick
import Murmeli.Localisation
import Murmeli.Permissions
import Murmeli.Ui

// One permission, and what can be done about it.
Item {
    id: root

    required property string symbol
    required property string title
    required property string detail
    required property int permission // a PermissionsModel.State
    required property bool asking
    readonly property bool granted: permission === PermissionsModel.Granted
    readonly property bool needsSettings: permission === PermissionsModel.Denied

    signal requested()

    implicitHeight: Math.max(Theme.rowHeight, texts.implicitHeight + 20)

    Accessible.role: Accessible.Grouping
    Accessible.name: granted ? title + ", " + L.t("perm.state.ok").toLowerCase()
        : asking ? L.t("perm.asking.name", title) : title
    Accessible.description: detail

    IconTile {
        id: tile
        anchors { left: parent.left; leftMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
        symbol: root.symbol
    }
    Column {
        id: texts
        anchors { left: tile.right; leftMargin: Theme.padPanel; right: end.left; rightMargin: Theme.padPanel }
        anchors.verticalCenter: parent.verticalCenter
        Label {
            width: parent.width
            type: Theme.setting
            text: root.title
        }
        Label {
            width: parent.width
            type: Theme.detail
            color: Theme.text3
            wrapMode: Text.Wrap
            text: root.detail
        }
    }
    Item {
        id: end
        anchors { right: parent.right; rightMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
        // Nothing beside it moves while the answer is awaited.
        width: root.granted ? ok.width : button.width
        height: button.height

        Row {
            id: ok
            anchors.verticalCenter: parent.verticalCenter
            spacing: 6
            opacity: root.granted ? 1 : 0
            visible: opacity > 0
            Behavior on opacity { NumberAnimation { duration: Theme.quick } }
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                size: 15
                name: "checkmark"
                ink: Theme.inkGreen
            }
            Label {
                type: Theme.granted
                color: Theme.inkGreen
                text: L.t("perm.state.ok")
            }
        }
        Spinner {
            anchors.centerIn: parent
            visible: root.asking && !root.granted
            size: 16
            ink: Theme.text2
        }
        PillButton {
            id: button
            visible: !root.granted
            opacity: root.asking ? 0 : 1 // it keeps its place, and the keyboard
            kind: PillButton.Tinted
            strong: true
            text: root.needsSettings ? L.t("perm.action.settings") : L.t("perm.action.allow")
            spokenName: root.asking ? L.t("perm.asking.name", root.title) : root.needsSettings ? L.t("perm.settings.name", root.title) : L.t("perm.allow.name", root.title)
            onClicked: if (!root.asking) root.requested()
        }
    }
}
