import QtQuick
import QtQuick.Layouts
import Murmeli.Localisation
import Murmeli.Panel
import Murmeli.Ui

RowLayout {
    id: root

    required property PanelModel panel

    spacing: 5

    PillButton {
        text: L.t("panel.protocols")
        onClicked: root.panel.meetingsRequested()
    }
    PillButton {
        symbol: "macwindow"
        symbolSize: 14
        text: L.t("panel.open_app")
        onClicked: root.panel.mainWindowRequested()
    }
    Label {
        Layout.fillWidth: true
        Layout.rightMargin: Theme.gapSmall
        horizontalAlignment: Text.AlignRight
        fontSizeMode: Text.HorizontalFit // in a wider type than the buttons are drawn for
        minimumPointSize: 6
        type: Theme.caption
        color: Theme.text3
        text: root.panel.version
        Accessible.name: L.t("panel.version", root.panel.version)
    }
    IconButton {
        symbol: "gearshape"
        help: L.t("settings.window.title")
        onClicked: root.panel.settingsRequested()
    }
    IconButton {
        symbol: "power"
        help: L.say(root.panel.quitHelp)
        onClicked: root.panel.quitRequested()
    }
}
