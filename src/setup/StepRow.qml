import QtQuick
import Murmeli.Localisation
import Murmeli.Setup
import Murmeli.Ui

// One step of the installation.
Rectangle {
    id: root

    required property string labelKey
    required property string symbol
    required property int kind // a SetupRunner.Kind
    required property int percent // -1 while unknown
    readonly property bool waiting: kind === SetupRunner.Waiting
    readonly property bool running: kind === SetupRunner.Running
    readonly property bool done: kind === SetupRunner.Done
    readonly property bool failed: kind === SetupRunner.Failed

    implicitHeight: Theme.grown(36)
    color: running ? Theme.tintRow(Theme.cyan) : failed ? Theme.tintRow(Theme.red) : Theme.clear

    Accessible.role: Accessible.ListItem
    Accessible.name: label.text + ", " + (done ? L.t("setup.step.name.done") : failed ? L.t("setup.step.name.failed")
        : waiting ? L.t("setup.step.name.waiting") : percent >= 0 ? L.spokenPercent(percent) : L.t("setup.step.name.running"))

    Symbol {
        id: glyph
        anchors { left: parent.left; leftMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
        size: Theme.symbolRow
        name: root.symbol
        ink: root.running ? Theme.inkCyan : root.failed ? Theme.inkRed : root.waiting ? Theme.text4 : Theme.text2
    }
    Label {
        id: label
        anchors { left: glyph.right; leftMargin: Theme.padPanel; right: figure.left; verticalCenter: parent.verticalCenter }
        color: root.waiting ? Theme.text3 : Theme.text1
        text: L.t(root.labelKey)
        Accessible.ignored: true
    }
    Label {
        id: figure
        anchors { right: end.left; rightMargin: 9; verticalCenter: parent.verticalCenter }
        type: Theme.granted
        text: root.running && root.percent >= 0 ? L.percent(root.percent) : ""
        Accessible.ignored: true
    }
    Item {
        id: end
        anchors { right: parent.right; rightMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
        width: 24
        height: 24

        Rectangle {
            id: badge
            anchors.fill: parent
            radius: width / 2
            visible: root.done || root.failed
            color: Theme.tint(root.failed ? Theme.red : Theme.green)
            Symbol {
                anchors.centerIn: parent
                size: 14
                name: root.failed ? "exclamationmark" : "checkmark"
                ink: root.failed ? Theme.inkRed : Theme.inkGreen
            }
            NumberAnimation on scale {
                running: badge.visible && root.Window.visibility !== Window.Hidden && Theme.motion
                from: 0.6
                to: 1
                duration: Theme.spring
                easing.type: Easing.OutBack
                easing.overshoot: Theme.springOvershoot
            }
        }
        Spinner {
            anchors.centerIn: parent
            visible: root.running
            size: 16
        }
        Symbol {
            anchors.centerIn: parent
            visible: root.waiting
            size: Theme.symbolText
            name: root.symbol
            ink: Theme.text4
        }
    }
}
