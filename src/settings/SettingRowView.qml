import QtQuick
import Murmeli.Localisation
import Murmeli.Settings
import Murmeli.Ui

// A setting: what it is, and its control. Unfolds and folds when a toggle shows or hides it.
Item {
    id: root

    required property settingRow row
    required property SettingsModel model
    required property bool first
    readonly property settingState now: model.states[row.id]
    readonly property bool hidden: now.hidden
    property real extent: hidden ? 0 : 1

    implicitHeight: Math.max(Theme.rowHeight, texts.implicitHeight + 20) * Theme.unfolded(extent)
    visible: extent > 0
    enabled: !hidden
    clip: extent < 1
    opacity: extent

    Behavior on extent { NumberAnimation { duration: Theme.base; easing.type: Easing.OutCubic } }

    Rectangle {
        width: parent.width
        height: Theme.hair
        visible: !root.first
        color: Theme.line
    }
    IconTile {
        id: tile
        anchors { left: parent.left; leftMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
        symbol: root.row.icon
    }
    Column {
        id: texts
        anchors { left: tile.right; leftMargin: Theme.padPanel; right: control.left; rightMargin: Theme.padPanel }
        anchors.verticalCenter: parent.verticalCenter
        Label {
            id: title
            width: parent.width
            type: Theme.setting
            text: L.t(root.row.id + ".title")
        }
        Label {
            id: subtitle
            width: parent.width
            type: Theme.detail
            color: Theme.text3
            wrapMode: Text.Wrap
            text: (root.now.lead ? root.now.lead + L.t("common.dot") : "") + L.say(root.now.subtitle)
        }
    }
    SettingControl {
        id: control
        anchors { right: parent.right; rightMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
        row: root.row
        now: root.now
        model: root.model
        title: title.text
        subtitle: subtitle.text
    }
}
