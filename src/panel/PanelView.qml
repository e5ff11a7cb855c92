import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Murmeli.Account
import Murmeli.Localisation
import Murmeli.Margin
import Murmeli.Notices
import Murmeli.Panel
import Murmeli.Service
import Murmeli.Ui
import Murmeli.Update

// The everyday face of Murmeli: what the service is doing, the record button, two preferences, delivery.
Item {
    id: root

    required property AppState appState
    required property RecordControl record
    required property PanelModel panel
    required property AuthManager account
    required property Updater updater
    required property NoticeBoard board
    required property RecordingMarks marks
    required property WindowActions actions
    property bool floating: true
    property bool open: false
    property bool above: false // the status item, which then stands below

    // What the panel would like to be; it makes do with less.
    readonly property size contentSize: Qt.size(Theme.panelWidth, arrowRoom + fullHeight)
    readonly property real arrowRoom: floating ? Theme.arrowHeight - 1 : 0
    readonly property real footerGap: 2
    readonly property real fullHeight: column.implicitHeight + footerGap + footer.implicitHeight + Theme.padPanel
    readonly property int sideMargin: floating ? Theme.shadowExtent : 0
    readonly property int topMargin: floating ? Math.min(Theme.shadowExtent, 12) : 0
    readonly property int bottomMargin: floating ? Theme.shadowExtent : 0
    readonly property bool onScreen: visible && Window.visibility !== Window.Hidden && (open || fade.running)

    function focusFirst(): void {
        orb.forceActiveFocus(Qt.OtherFocusReason);
        scroll.show(hero);
    }

    implicitWidth: Theme.panelWidth + 2 * sideMargin
    implicitHeight: topMargin + contentSize.height + bottomMargin

    onOnScreenChanged: {
        if (onScreen) panel.watch();
        else panel.unwatch();
    }
    Component.onDestruction: if (onScreen) panel.unwatch()
    onOpenChanged: {
        if (open) focusFirst();
        else if (!floating) root.actions.faded();
    }

    states: State {
        name: "Open"
        when: root.open || !root.floating
    }
    transitions: [
        Transition {
            to: "Open"
            ParallelAnimation {
                NumberAnimation { target: sheet; property: "opacity"; from: 0; to: 1; duration: Theme.quick; easing.type: Easing.OutCubic }
                NumberAnimation { target: sheet; property: "y"; from: root.above ? Theme.drop : -Theme.drop; to: 0; duration: Theme.quick; easing.type: Easing.OutCubic }
            }
        },
        Transition {
            from: "Open"
            SequentialAnimation {
                id: fade
                NumberAnimation { target: sheet; property: "opacity"; to: 0; duration: Theme.closing }
                ScriptAction { script: root.actions.faded() }
            }
        }
    ]

    MouseArea { // the shadow around the panel belongs to our window, but not to the panel
        anchors.fill: parent
        enabled: root.floating
        Accessible.ignored: true
        onPressed: root.actions.pressedBeside()
    }

    Item {
        id: sheet
        width: parent.width
        height: parent.height

        Shadow {
            visible: root.floating && Theme.compositing
            x: body.x - extent
            y: body.y - extent
            width: body.width + 2 * extent
            height: body.height + 2 * extent
            extent: Theme.shadowExtent
            radius: Theme.rPanel
            offset: Theme.popShadowOffset
            blur: Theme.popShadowBlur
            color: Theme.popShadow
        }
        Rectangle {
            id: body
            x: root.sideMargin
            y: root.topMargin + (root.above ? 0 : root.arrowRoom)
            width: root.floating ? Theme.panelWidth : root.width
            height: root.height > 0 ? Math.min(root.fullHeight, root.height - y - root.bottomMargin - (root.above ? root.arrowRoom : 0)) : root.fullHeight
            radius: root.floating && Theme.compositing ? Theme.rPanel : 0
            color: Theme.bgPanel
            border.width: root.floating ? Theme.hair : 0
            border.color: Theme.popEdge

            MouseArea { // presses between the controls stay in the panel
                anchors.fill: parent
                Accessible.ignored: true
            }
            Scroller {
                id: scroll
                width: parent.width
                height: footer.y - (body.height < root.fullHeight ? Theme.gapRow : root.footerGap)
                lead: 24
                head: 120

                Item {
                    x: Theme.hair
                    y: Theme.hair
                    width: parent.width - 2 * Theme.hair
                    height: column.height - 2 * Theme.hair
                    clip: true
                    OrbArt {
                        x: (parent.width - width) / 2
                        y: hero.y + 88 - height / 2
                        width: 400
                        height: 320
                        part: OrbArt.Wash
                        style: root.panel.face === PanelModel.Recording ? Theme.orbRecording
                            : root.panel.face === PanelModel.Processing ? Theme.orbProcessing : Theme.orbIdle
                    }
                }
                ColumnLayout {
                    id: column
                    width: parent.width
                    spacing: 0

                    Banner {
                        Layout.fillWidth: true
                        shown: root.appState.authFlag
                        accent: Theme.pink
                        ink: Theme.inkPink
                        symbol: "person.crop.circle.badge.exclamationmark"
                        title: L.say(root.panel.authTitle)
                        body: L.say(root.panel.authBody)
                        closable: true
                        closeHelp: L.t("panel.auth.dismiss")
                        onDismissed: root.appState.dismissAuthBanner()
                    }
                    // Bound as a whole, the file could not have its loaders.
                    // qmllint disable unqualified
                    Repeater {
                        model: root.board.notices.length
                        delegate: NoticeBanner {
                            required property int index
                            Layout.fillWidth: true
                            board: root.board
                            kind: index
                        }
                    }
                    // qmllint enable unqualified
                    Banner {
                        Layout.fillWidth: true
                        shown: root.appState.welcome
                        accent: Theme.green
                        ink: Theme.inkGreen
                        symbol: "checkmark.seal.fill"
                        title: L.t("panel.welcome.title")
                        body: L.t("panel.welcome.body")
                    }
                    Banner {
                        Layout.fillWidth: true
                        shown: root.updater.available
                        accent: Theme.violet
                        ink: Theme.inkViolet
                        symbol: "arrow.down.circle.fill"
                        title: L.t("update.subtitle.available", root.updater.latest)
                        action: PillButton {
                            kind: root.updater.busy ? PillButton.Tinted : PillButton.Primary
                            busy: root.updater.busy
                            enabled: !root.updater.busy
                            text: root.updater.busy ? L.t("update.action.installing") : L.t("update.action.install")
                            onClicked: root.panel.updateRequested()
                        }
                    }
                    ColumnLayout {
                        id: hero
                        Layout.fillWidth: true
                        Layout.topMargin: 22
                        Layout.bottomMargin: 18
                        spacing: 0

                        StatusOrb {
                            id: orb
                            Layout.alignment: Qt.AlignHCenter
                            panel: root.panel
                            record: root.record
                            moving: root.onScreen
                            focus: true
                        }
                        Label {
                            Layout.alignment: Qt.AlignHCenter
                            Layout.topMargin: 14
                            type: Theme.panelTitle
                            text: L.say(root.panel.title)
                        }
                        Item {
                            Layout.fillWidth: true
                            Layout.topMargin: 3
                            Layout.preferredHeight: Math.max(root.panel.face === PanelModel.Recording ? 30 : 20, line.visible ? line.implicitHeight : 0)
                            RecTimer {
                                anchors.centerIn: parent
                                panel: root.panel
                                visible: root.panel.lineKind === PanelModel.RunningTime
                            }
                            Label {
                                id: line
                                anchors.centerIn: parent
                                width: parent.width - 40
                                visible: root.panel.lineKind !== PanelModel.RunningTime
                                horizontalAlignment: Text.AlignHCenter
                                wrapMode: Text.Wrap
                                maximumLineCount: 3
                                elide: Text.ElideRight
                                type: Theme.sub
                                text: L.say(root.panel.line) + (root.panel.usualLine.empty ? "" : L.t("common.dot") + L.say(root.panel.usualLine))
                                color: root.panel.lineKind === PanelModel.Refused ? Theme.inkRed
                                    : root.panel.lineKind !== PanelModel.Invitation ? Theme.text2
                                    : root.panel.face === PanelModel.Recording ? Theme.inkRed : Theme.inkViolet

                                HoverHandler { id: over }
                                // Loaders take no bound components yet.
                                // qmllint disable unqualified
                                Loader { // most lines are seen whole
                                    anchors.fill: parent
                                    active: over.hovered && line.truncated
                                    sourceComponent: HelpTip {
                                        wanted: over.hovered
                                        text: line.text
                                    }
                                }
                                // qmllint enable unqualified
                            }
                        }
                        Rectangle {
                            Layout.alignment: Qt.AlignHCenter
                            Layout.topMargin: 9
                            visible: !root.panel.jobsLine.empty
                            implicitWidth: jobs.implicitWidth + 18
                            implicitHeight: Theme.grown(22)
                            radius: 11
                            color: Theme.fill
                            Row {
                                id: jobs
                                x: 8
                                anchors.verticalCenter: parent.verticalCenter
                                spacing: 6
                                ProcessingSpinner {
                                    anchors.verticalCenter: parent.verticalCenter
                                    size: Theme.jobs.size
                                    moving: root.onScreen
                                }
                                Label {
                                    type: Theme.jobs
                                    color: Theme.text2
                                    text: L.say(root.panel.jobsLine)
                                }
                            }
                        }
                    }
                    // Loaders take no bound components yet.
                    // qmllint disable unqualified
                    Loader { // only a recording has them
                        Layout.fillWidth: true
                        Layout.leftMargin: Theme.padPanel
                        Layout.rightMargin: Theme.padPanel
                        Layout.bottomMargin: Theme.gapGroup
                        active: root.appState.recording
                        visible: active
                        sourceComponent: MarkField { marks: root.marks }
                    }
                    // qmllint enable unqualified
                    PreferenceRows {
                        Layout.fillWidth: true
                        Layout.leftMargin: Theme.padPanel
                        Layout.rightMargin: Theme.padPanel
                        Layout.bottomMargin: Theme.gapGroup
                        panel: root.panel
                    }
                    AccountRows {
                        Layout.fillWidth: true
                        Layout.leftMargin: Theme.padPanel
                        Layout.rightMargin: Theme.padPanel
                        Layout.bottomMargin: Theme.gapGroup
                        panel: root.panel
                        account: root.account
                        appState: root.appState
                        onAddressAsked: card => scroll.showNew(card)
                    }
                }
            }
            Rectangle { // where the scrolled content ends
                y: scroll.y + scroll.height
                width: parent.width
                height: Theme.hair
                visible: !scroll.atYEnd
                color: Theme.line
            }
            PanelFooter {
                id: footer
                x: Theme.padPanel
                y: parent.height - height - Theme.padPanel
                width: parent.width - x - Theme.gapRow
                panel: root.panel
            }
        }
        Triangle {
            visible: root.floating
            x: body.x + root.appState.arrowX - width / 2
            y: root.above ? body.y + body.height - 1.5 : body.y - height + 1.5
            rotation: root.above ? 180 : 0
        }
    }
}
