import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Panel
import Murmeli.Service
import Murmeli.Ui

// The big round record button.
AbstractButton {
    id: root

    required property PanelModel panel
    required property RecordControl record
    required property bool moving

    readonly property string wantedSymbol: panel.face === PanelModel.Recording ? "waveform"
        : panel.face === PanelModel.Processing ? "gearshape.2.fill" : "mic.fill"

    readonly property bool invites: hovered && moving // a panel that closes under the pointer invites no more

    function showWantedSymbol(): void {
        symbol.name = wantedSymbol;
    }

    implicitWidth: Theme.orbField
    implicitHeight: Theme.orbField
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    text: L.say(panel.orbName)
    onClicked: record.toggle()
    onInvitesChanged: panel.hoverOrb = invites

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: L.say(panel.orbHelp)
    Accessible.onPressAction: if (root.enabled) root.clicked()
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Item {
        OrbArt {
            anchors.fill: parent
            part: OrbArt.Ring
            color: Theme.orbTrack
        }
        OrbFace {
            style: Theme.orbIdle
            shown: root.panel.face === PanelModel.Idle
            moving: root.moving
            pulseFrom: 0.985
            pulseTo: 1.015
            pulseTime: Theme.breathe
            turnTime: Theme.drift
            hovered: root.hovered
            pressed: root.down
            waiting: root.record.waiting
        }
        OrbFace {
            style: Theme.orbRecording
            shown: root.panel.face === PanelModel.Recording
            moving: root.moving
            pulseFrom: 0.97
            pulseTo: 1.03
            haloFrom: 0.75
            pulseTime: Theme.pulse
            hovered: root.hovered
            pressed: root.down
            waiting: root.record.waiting
        }
        OrbFace {
            style: Theme.orbProcessing
            shown: root.panel.face === PanelModel.Processing
            moving: root.moving
            pulseFrom: 0.985
            pulseTo: 1.015
            pulseTime: Theme.pulseSlow
            turnTime: Theme.turn
            hovered: root.hovered
            pressed: root.down
            waiting: root.record.waiting
        }
        Rectangle { // dimmed while the service has not answered
            anchors.centerIn: parent
            width: Theme.orbCore * 0.95
            height: width
            radius: width / 2
            color: Theme.orbDim
            opacity: root.record.waiting ? 1 : 0
            visible: opacity > 0
            Behavior on opacity { NumberAnimation { duration: Theme.quick } }
        }
        OrbArt {
            anchors.fill: parent
            visible: root.record.waiting
            part: OrbArt.Arc
            style: Theme.orbComet
            strokeWidth: 2
            NumberAnimation on turned {
                from: 0
                to: 360
                duration: Theme.comet
                loops: Animation.Infinite
                running: root.record.waiting && root.moving && Theme.motion
            }
        }
        FocusRing { shown: root.visualFocus; corner: width; gap: Theme.orbFocusGap }
    }
    Symbol {
        id: symbol
        anchors.centerIn: parent
        z: 1 // above the background
        name: "mic.fill"
        size: name === "waveform" ? 52 : 40
        ink: Theme.white
        Component.onCompleted: root.showWantedSymbol()
    }
    onWantedSymbolChanged: if (symbol.name !== wantedSymbol) exchange.restart()

    SequentialAnimation {
        id: exchange
        ParallelAnimation {
            NumberAnimation { target: symbol; property: "opacity"; to: 0; duration: Theme.symbolSwap }
            NumberAnimation { target: symbol; property: "scale"; to: Theme.motion ? 0.9 : 1; duration: Theme.symbolSwap }
        }
        ScriptAction { script: root.showWantedSymbol() }
        ParallelAnimation {
            NumberAnimation { target: symbol; property: "opacity"; to: 1; duration: Theme.symbolSwap }
            NumberAnimation { target: symbol; property: "scale"; to: 1; duration: Theme.symbolSwap }
        }
    }
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    Loader {
        anchors.fill: parent
        active: root.invites && !root.record.waiting
        sourceComponent: HelpTip {
            wanted: root.invites
            text: L.say(root.panel.orbHelp)
        }
    }
    // qmllint enable unqualified
    HoverHandler { cursorShape: root.record.waiting ? Qt.ArrowCursor : Qt.PointingHandCursor }
}
