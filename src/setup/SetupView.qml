pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Localisation
import Murmeli.Permissions
import Murmeli.Setup
import Murmeli.Ui
import Murmeli.Update

// The first minutes with Murmeli: the engine is installed while the user grants the permissions.
Rectangle {
    id: root

    required property Setup setup
    required property Updater updater
    readonly property SetupRunner runner: setup.runner
    readonly property PermissionsModel perms: setup.permissions
    readonly property bool diskImage: updater.runningFromDiskImage
    readonly property string variant: diskImage ? ".dmg" : runner.finished ? ".done" : runner.failed ? ".failed" : ""
    readonly property int percent: Math.max(0, Math.round(runner.overallPercent * 100))

    color: Theme.bgWindow
    Component.onCompleted: footer.focusFirst()
    Keys.onPressed: event => {
        const page = scroll.height - 40;
        const to = { [Qt.Key_PageDown]: scroll.contentY + page, [Qt.Key_PageUp]: scroll.contentY - page,
            [Qt.Key_Down]: scroll.contentY + 40, [Qt.Key_Up]: scroll.contentY - 40,
            [Qt.Key_End]: scroll.contentHeight, [Qt.Key_Home]: 0 }[event.key];
        if (to === undefined) return;
        event.accepted = true;
        scroll.contentY = Math.max(0, Math.min(scroll.contentHeight - scroll.height, to));
    }

    Scroller {
        id: scroll
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: footer.top }
        lead: Theme.padCard

        Column {
            id: content
            x: Theme.padWindow
            width: scroll.width - 2 * Theme.padWindow
            topPadding: 38 + Theme.chromeInset
            bottomPadding: 16

            Item {
                width: parent.width
                height: Math.max(tile.height, titles.height) + 22

                Rectangle {
                    id: tile
                    y: (titles.height - height) / 2
                    width: 52
                    height: 52
                    radius: 15
                    gradient: Gradient {
                        orientation: Gradient.Horizontal
                        GradientStop { position: 0; color: Theme.badgeFrom }
                        GradientStop { position: 1; color: Theme.badgeTo }
                    }
                    Shadow {
                        z: -1
                        anchors.fill: parent
                        anchors.margins: -extent
                        extent: 36
                        radius: parent.radius
                        offset: 8
                        blur: 22
                        color: Theme.alpha(Theme.violet, 0.30)
                    }
                    Symbol {
                        anchors.centerIn: parent
                        size: 28
                        name: "waveform"
                        ink: Theme.white
                    }
                }
                Column {
                    id: titles
                    anchors { left: tile.right; leftMargin: 16; right: parent.right }
                    spacing: 2
                    Label {
                        width: parent.width
                        type: Theme.title
                        text: L.t("setup.title" + root.variant)
                        Accessible.role: Accessible.Heading
                    }
                    Label {
                        width: parent.width
                        type: Theme.lead
                        color: Theme.text2
                        wrapMode: Text.Wrap
                        text: root.variant === ".done" && Qt.platform.os !== "osx"
                            ? L.t("setup.subtitle.done.linux", footer.startText) : L.t("setup.subtitle" + root.variant)
                    }
                }
            }
            Callout {
                width: parent.width
                visible: root.diskImage
                accent: Theme.violet
                ink: Theme.inkViolet
                symbol: "arrow.down.app"
                title: L.t("setup.dmg.title")
                body: L.t("setup.dmg.body")
                Item {
                    width: parent.width
                    height: applications.height + 9
                    PillButton {
                        id: applications
                        y: 9
                        kind: PillButton.Primary
                        buttonHeight: Theme.buttonHeight
                        text: L.t("setup.action.applications")
                        onClicked: root.updater.reveal()
                    }
                }
            }
            Item {
                width: 1
                height: 20
                visible: root.diskImage
            }
            ProgressLine {
                x: Theme.gapSmall
                width: parent.width - 2 * Theme.gapSmall
                height: 6
                value: root.runner.overallPercent
                from: root.runner.finished ? Theme.green : root.runner.failed ? Theme.red : Theme.violet
                to: root.runner.finished ? Theme.green : root.runner.failed ? Theme.red : Theme.blue
                Accessible.name: L.t("setup.progress.name", L.spokenPercent(root.percent))
            }
            Item {
                x: Theme.gapSmall
                width: parent.width - 2 * Theme.gapSmall
                height: hint.height + Theme.gapIcon + Theme.padCard
                Label {
                    id: hint
                    y: Theme.gapIcon
                    anchors { left: parent.left; right: figure.left }
                    type: Theme.caption
                    color: Theme.text3
                    opacity: root.runner.running ? 1 : 0
                    text: L.t("setup.hint")
                    Accessible.ignored: !root.runner.running
                }
                Label {
                    id: figure
                    y: hint.y
                    anchors.right: parent.right
                    type: Theme.caption
                    color: Theme.text3
                    text: L.percent(root.percent)
                    Accessible.ignored: true
                }
            }
            Card {
                width: parent.width
                height: steps.height
                color: Theme.bgCard
                clip: true
                Accessible.role: Accessible.List
                Accessible.name: L.t("setup.title")
                Column {
                    id: steps
                    width: content.width
                    Repeater {
                        model: root.runner
                        delegate: Column {
                            id: step

                            required property int index
                            required property string labelKey
                            required property string symbol
                            required property int kind
                            required property int percent

                            width: content.width
                            Rectangle {
                                width: parent.width
                                height: Theme.hair
                                visible: step.index > 0
                                color: Theme.line
                            }
                            StepRow {
                                width: parent.width
                                labelKey: step.labelKey
                                symbol: step.symbol
                                kind: step.kind
                                percent: step.percent
                            }
                        }
                    }
                }
            }
            Item {
                width: 1
                height: Theme.padCard
            }
            PermissionsPane {
                id: permissions
                width: parent.width
                model: root.perms
                compact: true
                onNoted: scroll.showNew(permissions)
            }
        }
    }
    SetupFooter {
        id: footer
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        runner: root.runner
        perms: root.perms
        diskImage: root.diskImage
        onDone: root.setup.finish()
    }
}
