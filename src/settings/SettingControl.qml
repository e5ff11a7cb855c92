import QtQuick
import QtQuick.Window
import Murmeli.Localisation
import Murmeli.Settings
import Murmeli.Ui

// What changes a setting, by its kind. Named by the row's title and described by its subtitle.
Loader {
    id: root

    required property settingRow row
    required property settingState now
    required property SettingsModel model
    required property string title
    required property string subtitle

    // Loaders take no bound components yet.
    // qmllint disable unqualified
    sourceComponent: [toggle, choice, stepper, action][row.kind]

    Component {
        id: toggle
        Toggle {
            on: root.now.value
            name: root.title
            description: root.subtitle
            onChosen: on => root.model.set(root.row.id, on)
        }
    }
    Component {
        id: choice
        Choice {
            readonly property choiceSetting setting: root.row.control
            options: Array.from(setting.options, option => ({ value: option.value, text: L.t(option.labelKey) }))
            current: root.now.value
            name: root.title
            description: root.subtitle
            onChosen: value => root.model.set(root.row.id, value)
        }
    }
    Component {
        id: stepper
        Stepper {
            readonly property stepperSetting setting: root.row.control
            value: root.now.value
            least: setting.least
            most: setting.most
            text: value + " " + L.t(setting.unitKey)
            name: root.title
            description: root.subtitle
            lessName: L.t("stepper.less", root.title)
            moreName: L.t("stepper.more", root.title)
            onChosen: value => root.model.set(root.row.id, value)
        }
    }
    Component {
        id: action
        Row {
            id: actions
            readonly property actionSetting setting: root.row.control
            spacing: Theme.gapRow
            IconButton {
                anchors.verticalCenter: parent.verticalCenter
                visible: actions.setting.action === SettingAction.LoadInstructions && root.model.hasInstructions
                side: Theme.buttonSmall
                symbol: "trash"
                symbolSize: Theme.symbolText
                help: L.t("instructions.clear")
                onClicked: root.model.run(SettingAction.ClearInstructions, root.Window.window)
            }
            PillButton {
                kind: actions.setting.action === SettingAction.ConnectTelegram && !root.model.telegramConnected
                    ? PillButton.Tinted : PillButton.Secondary
                text: L.t(root.now.buttonKey)
                spokenName: text + ": " + root.title
                help: root.subtitle
                onClicked: root.model.run(actions.setting.action, root.Window.window)
            }
            PillButton {
                visible: root.now.secondKey.length > 0
                text: L.t(root.now.secondKey)
                spokenName: text + ": " + root.title
                help: root.subtitle
                onClicked: root.model.run(actions.setting.second, root.Window.window)
            }
        }
    }
    // qmllint enable unqualified
}
