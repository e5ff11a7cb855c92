pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Localisation
import Murmeli.Panel
import Murmeli.Ui

// The running time, each digit in a cell of equal width so that nothing jitters.
Row {
    id: root

    required property PanelModel panel

    spacing: Theme.gapRow

    Accessible.role: Accessible.StaticText
    Accessible.name: panel.spokenTime
    Accessible.focusable: true

    TextMetrics {
        id: zero
        font: sample.font
        text: "0"
    }
    Label {
        id: sample
        visible: false
        type: Theme.timer
    }
    Row {
        anchors.verticalCenter: parent.verticalCenter
        Repeater {
            model: root.panel.time.length
            delegate: Label {
                required property int index
                readonly property string figure: root.panel.time.charAt(index)
                type: Theme.timer
                text: figure
                width: figure === ":" ? implicitWidth : zero.advanceWidth
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideNone
                Accessible.ignored: true
            }
        }
    }
    Label {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 2
        type: Theme.sub
        color: Theme.text2
        text: L.say(root.panel.line)
        Accessible.ignored: true
    }
}
