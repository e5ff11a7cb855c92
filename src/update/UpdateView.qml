pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Window
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Ui
import Murmeli.Update

// Which release runs, which is published, and what is new in it.
Rectangle {
    id: root

    required property Updater updater
    readonly property int phase: updater.phase
    readonly property color accent: Theme.accents[updater.accent]
    readonly property color accentInk: Theme.accentInks[updater.accent]

    function focusFirst(): void {
        footer.focusFirst();
    }

    color: Theme.bgWindow
    onPhaseChanged: appear.restart()
    Component.onCompleted: focusFirst()

    NumberAnimation {
        id: appear
        targets: [header, footer]
        property: "opacity"
        from: 0
        to: 1
        duration: Theme.base
        easing.type: Easing.OutCubic
    }
    Item {
        id: header
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.padUpdate }
        height: Math.max(46, said.height)

        Rectangle {
            id: tile
            width: 46
            height: 46
            radius: Theme.rTile
            color: Theme.tint(root.accent)
            Symbol {
                id: arrow
                x: (parent.width - width) / 2
                y: (parent.height - height) / 2 + sunk
                property real sunk
                size: 25
                name: "arrow.down.circle"
                ink: root.accentInk
                SequentialAnimation on sunk {
                    running: root.phase === Updater.Installing && root.Window.visibility !== Window.Hidden && Theme.motion
                    loops: Animation.Infinite
                    NumberAnimation { to: Theme.sink; duration: Theme.pulseSlow / 2; easing.type: Easing.InOutSine }
                    NumberAnimation { to: 0; duration: Theme.pulseSlow / 2; easing.type: Easing.InOutSine }
                    onStopped: arrow.sunk = 0
                }
            }
        }
        Column {
            id: said
            anchors { left: tile.right; leftMargin: Theme.padCard; right: parent.right; rightMargin: close.width + Theme.gapSmall }
            spacing: 2
            Label {
                width: parent.width
                type: Theme.title
                text: L.say(root.updater.title)
                Accessible.role: Accessible.StatusBar
            }
            Label {
                width: parent.width
                type: Theme.sub
                color: Theme.text2
                wrapMode: Text.Wrap
                text: L.say(root.updater.subtitle)
            }
        }
    }
    Row {
        id: versions
        anchors { left: header.left; top: header.bottom; topMargin: 18 }
        width: header.width
        spacing: 9
        Accessible.role: Accessible.StaticText
        Accessible.name: {
            const latest = root.updater.latest;
            const released = root.updater.released;
            return L.t("update.name.current", root.updater.current)
                + (root.updater.available && latest.length > 0 ? ", " + L.t("update.name.latest", latest) : "")
                + (released.length > 0 ? " " + L.t("update.name.released", released) : "");
        }
        Label {
            id: current
            type: Theme.lead
            color: Theme.text2
            text: root.updater.current
            Accessible.ignored: true
        }
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.updater.latest.length > 0
            size: 14
            name: "arrow.right"
            ink: Theme.text3
        }
        Label {
            width: Math.min(implicitWidth, versions.width / 3)
            visible: text.length > 0
            type: Theme.labelStrong
            text: root.updater.latest
            Accessible.ignored: true
        }
        Label {
            width: Math.min(implicitWidth, versions.width / 2)
            visible: root.updater.released.length > 0
            type: Theme.lead
            color: Theme.text3
            text: L.t("common.dot") + root.updater.released
            Accessible.ignored: true
        }
    }
    Item {
        id: warningPlace
        anchors { left: header.left; right: header.right; top: versions.bottom; topMargin: visible ? 18 : 0 }
        height: visible ? warning.height : 0
        visible: root.updater.runningFromDiskImage
        Callout {
            id: warning
            width: parent.width
            accent: Theme.pink
            ink: Theme.inkPink
            symbol: "exclamationmark.triangle"
            title: L.t("update.dmg.title")
            body: L.t("update.dmg.body")
            Label {
                width: parent.width
                topPadding: Theme.gapSmall
                type: Theme.fixedPitch
                color: Theme.text3
                elide: Text.ElideMiddle
                text: root.updater.bundlePath
            }
        }
    }
    Label {
        id: heading
        anchors { left: header.left; top: warningPlace.bottom; topMargin: 18 }
        type: Theme.labelStrong
        text: L.t("update.whatsnew")
        Accessible.role: Accessible.Heading
    }
    UpdateFooter { // before the notes for the keyboard
        id: footer
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        updater: root.updater
    }
    Rectangle {
        anchors { left: header.left; right: header.right; top: heading.bottom; topMargin: 9 }
        anchors { bottom: footer.top; bottomMargin: 18 }
        radius: Theme.rCard
        color: Theme.bgCard
        border.width: Theme.hair
        border.color: Theme.line

        Label {
            anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.padCard; leftMargin: 16 }
            visible: notes.count === 0
            type: Theme.running
            color: Theme.text3
            wrapMode: Text.Wrap
            text: L.t("update.whatsnew.empty")
        }
        ListView {
            id: notes
            anchors.fill: parent
            anchors.margins: Theme.hair
            topMargin: Theme.padCard
            bottomMargin: Theme.padCard
            clip: true
            spacing: 9
            model: root.updater.paragraphs
            boundsBehavior: Flickable.StopAtBounds
            currentIndex: -1 // the keyboard scrolls the whole, no paragraph has it
            activeFocusOnTab: count > 0
            Keys.onUpPressed: flick(0, 500)
            Keys.onDownPressed: flick(0, -500)
            Accessible.role: Accessible.List
            Accessible.name: L.t("update.whatsnew")
            ScrollBar.vertical: ScrollThumb { }
            delegate: Label {
                required property string modelData
                x: 16
                width: notes.width - 32
                type: Theme.running
                color: Theme.text2
                wrapMode: Text.Wrap
                text: modelData
            }
        }
        FocusRing { shown: notes.activeFocus; corner: Theme.rCard; gap: 0 }
    }
    IconButton { // the last one for the keyboard
        id: close
        anchors { right: parent.right; top: parent.top; margins: Theme.padUpdate }
        symbol: "xmark"
        symbolSize: Theme.symbolSmall
        round: true
        filled: true
        help: L.t("update.close")
        onClicked: root.Window.window.close()
    }
}
