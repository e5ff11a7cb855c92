import QtQuick
import Murmeli.Localisation
import Murmeli.Protocol
import Murmeli.Ui

// What has become of the PDF.
Item {
    id: root

    required property ProtocolFileMaker files
    readonly property bool outdated: files.outcome === ProtocolFileMaker.Outdated
    readonly property bool working: files.outcome === ProtocolFileMaker.Working
    readonly property bool failed: files.outcome === ProtocolFileMaker.Failed

    signal rebuildAsked()
    signal otherWayAsked() // to a PDF

    property real unfolded: files.outcome === ProtocolFileMaker.Idle ? 0 : 1

    implicitHeight: Theme.grown(28) * Theme.unfolded(unfolded)
    opacity: unfolded
    visible: unfolded > 0
    clip: true

    Accessible.role: failed ? Accessible.AlertMessage : Accessible.StatusBar
    Accessible.name: line.text

    Behavior on unfolded { NumberAnimation { duration: Theme.base; easing.type: Easing.OutCubic } }

    Spinner {
        y: 9
        visible: root.working
    }
    Symbol {
        y: 8
        visible: !root.working
        size: Theme.symbolText
        name: root.files.symbol
        ink: Theme.accentInks[root.files.accent]
    }
    Label {
        id: line
        x: 23
        y: 8
        width: Math.min(implicitWidth, parent.width - x - (anew.visible ? anew.width + Theme.gapSmall : 0))
        type: Theme.sub
        color: root.failed ? Theme.inkRed : Theme.text2
        elide: Text.ElideMiddle
        text: L.say(root.files.message)
        Accessible.ignored: true
    }
    LinkButton {
        id: anew
        anchors { left: line.right; leftMargin: Theme.gapSmall; verticalCenter: line.verticalCenter }
        visible: root.outdated || root.failed
        symbol: root.outdated ? "arrow.counterclockwise" : "doc.text"
        text: root.outdated ? L.t("file.anew") : L.t("desk.without_chrome")
        onClicked: root.outdated ? root.rebuildAsked() : root.otherWayAsked()
    }
}
