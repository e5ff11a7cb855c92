pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Panel
import Murmeli.Ui

// The orb's look in one status: halo, rings, arc and core, with the movements of that status.
Item {
    id: root

    required property var style
    required property bool shown
    required property bool moving // the orb is on screen and may move
    property real pulseFrom: 1
    property real pulseTo: 1
    property real haloFrom: 0.8
    property int pulseTime: Theme.breathe
    property int turnTime: 0 // 0: the arc stands
    property bool hovered: false
    property bool pressed: false
    property bool waiting: false

    readonly property bool alive: moving && opacity > 0 && Theme.motion && !waiting
    property real time: pulseTime / 2 // in milliseconds, of the movement, which begins in its middle
    readonly property real beat: alive ? Math.round((1 - Math.cos(Math.PI * time / pulseTime)) * 8) / 16 : 0.5 // 0 … 1, there and back

    anchors.fill: parent
    opacity: shown ? 1 : 0
    visible: opacity > 0

    Behavior on opacity { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }

    // So slow and small a movement looks the same in far fewer steps than a screen has pictures.
    Timer {
        property double since

        interval: root.turnTime > 0 ? 50 : 66
        repeat: true
        running: root.alive
        onRunningChanged: since = Date.now() - root.time
        onTriggered: root.time = Date.now() - since
    }

    OrbArt {
        anchors.centerIn: parent
        width: Theme.orbHalo
        height: Theme.orbHalo
        part: OrbArt.Halo
        style: root.style
        opacity: Math.min(1, (root.haloFrom + (1 - root.haloFrom) * root.beat + (root.hovered ? 0.16 : 0))) * Theme.haloStrength
        Behavior on opacity {
            enabled: !root.alive
            NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic }
        }
    }
    Repeater {
        model: root.style.rings
        delegate: OrbArt {
            required property var modelData
            anchors.centerIn: parent
            width: modelData.diameter + 12 // room to grow
            height: width
            part: OrbArt.Ring
            color: modelData.color
            inset: 6
            zoom: root.alive ? 1.05 - 0.09 * root.beat : 1
        }
    }
    OrbArt {
        id: arc
        anchors.fill: parent
        visible: !root.waiting
        part: OrbArt.Arc
        style: root.style
        strokeWidth: 2
        turned: root.turnTime > 0 ? root.time % root.turnTime / root.turnTime * 360 : 0
    }
    OrbArt {
        anchors.centerIn: parent
        width: Theme.orbCore + 12
        height: width
        inset: 6
        part: OrbArt.Core
        style: root.style
        zoom: press.value * (root.alive ? root.pulseFrom + (root.pulseTo - root.pulseFrom) * root.beat : 1)
    }
    QtObject {
        id: press
        property real value: !Theme.motion ? 1 : root.waiting ? 0.95 : root.pressed ? 0.96 : root.hovered ? 1.035 : 1
        Behavior on value {
            NumberAnimation { duration: root.pressed ? Theme.instant : Theme.quick; easing.type: Easing.OutCubic }
        }
    }
}
