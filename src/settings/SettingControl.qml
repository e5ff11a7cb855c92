import QtQuick
import QtQuick.Window
import Murmeli.Localisation
import Murmeli.Settings
import Murmeli.Ui

// What changes a setting, by its kind. Named by the row's title and described by its subtitle.
Loader {
    id: root

    required property settingRow row
    required property SettingsModel model
    required property string title
    required property string subtitle
    readonly property int revision: model.revision

    // Loaders take no bound components yet.
    // qmllint disable unqualified
    sourceComponent: row.kind === SettingKind.Toggle ? toggle : row.kind === SettingKind.Choice ? choice
        : row.kind === SettingKind.Stepper ? stepper : action

    Component {
        id: toggle
        Toggle {
            on: root.model.boolean(root.row.id, root.revision)
            name: root.title
            description: root.subtitle
            onChosen: on => root.model.setBool(root.row.id, on)
        }
    }
    Component {
        id: choice
        Choice {
            options: root.row.options.map(option => ({ value: option.value, text: L.t(option.labelKey) }))
            current: root.model.string(root.row.id, root.revision)
            name: root.title
            description: root.subtitle
            onChosen: value => root.model.setString(root.row.id, value)
        }
    }
    Component {
        id: stepper
        Stepper {
            value: root.model.integer(root.row.id, root.revision)
            least: root.row.least
            most: root.row.most
            text: value + " " + L.t(root.row.unitKey)
            name: root.title
            description: root.subtitle
            lessName: L.t("stepper.less", root.title)
            moreName: L.t("stepper.more", root.title)
            onChosen: value => root.model.setInt(root.row.id, value)
        }
    }
    Component {
        id: action
        Row {
            spacing: Theme.gapRow
            IconButton {
                anchors.verticalCenter: parent.verticalCenter
                visible: root.row.action === SettingAction.LoadInstructions && root.model.hasInstructions
                side: Theme.buttonSmall
                symbol: "trash"
                symbolSize: Theme.symbolText
                help: L.t("instructions.clear")
                onClicked: root.model.run(SettingAction.ClearInstructions, root.Window.window)
            }
            PillButton {
                kind: root.row.action === SettingAction.ConnectTelegram && !root.model.telegramConnected
                    ? PillButton.Tinted : PillButton.Secondary
                text: L.t(root.model.buttonKey(root.row, root.revision))
                spokenName: text + ": " + root.title
                help: root.subtitle
                onClicked: root.model.run(root.row.action, root.Window.window)
            }
        }
    }
    // qmllint enable unqualified
}
