import QtQuick
import Murmeli.Localisation
import Murmeli.Protocol
import Murmeli.Ui

// What has become of the PDF.
Item {
    id: root

    required property ProtocolFileMaker files
    readonly property bool working: files.outcome === ProtocolFileMaker.Working
    readonly property bool failed: files.outcome === ProtocolFileMaker.Failed
    property real unfolded: files.outcome === ProtocolFileMaker.Idle ? 0 : 1

    implicitHeight: 28 * Theme.unfolded(unfolded)
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
        name: root.failed ? "exclamationmark.triangle" : "checkmark.circle.fill"
        ink: root.failed ? Theme.inkRed : Theme.inkGreen
    }
    Label {
        id: line
        x: 23
        y: 8
        width: parent.width - x
        type: Theme.sub
        color: root.failed ? Theme.inkRed : Theme.text2
        elide: Text.ElideMiddle
        text: L.say(root.files.message)
        Accessible.ignored: true
    }
}
