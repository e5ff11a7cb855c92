import QtQuick
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// How much of the talk was one person's.
Item {
    id: root

    required property speakerFigures value
    required property real growth // of the bar, from 0 to 1
    readonly property var inks: [Theme.violet, Theme.blue, Theme.cyan, Theme.pink, Theme.green]
    readonly property color ink: inks[value.place] ?? Theme.text4
    readonly property int percent: Math.round(value.share * 100)

    implicitHeight: Math.max(28, name.implicitHeight + 8)
    Accessible.role: Accessible.ProgressBar
    Accessible.name: value.name + ", " + L.spokenDuration(value.seconds) + ", " + L.spokenPercent(percent)

    SelectableText {
        id: name
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.grown(140) // a first name and a family name
        text: root.value.name
        Accessible.ignored: true
    }
    ProgressLine {
        anchors { left: parent.left; leftMargin: Theme.grown(148); right: time.left; rightMargin: Theme.padPanel; verticalCenter: parent.verticalCenter }
        value: root.value.share * root.growth
        from: root.ink
        to: root.ink
        Accessible.ignored: true
    }
    SelectableText {
        id: time
        anchors { right: share.left; verticalCenter: parent.verticalCenter }
        width: Theme.grown(52)
        horizontalAlignment: TextEdit.AlignRight
        type: Theme.sub
        color: Theme.text2
        text: root.value.duration
        Accessible.ignored: true
    }
    SelectableText {
        id: share
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        width: Theme.grown(52)
        horizontalAlignment: TextEdit.AlignRight
        type: Theme.link
        text: L.percent(root.percent)
        Accessible.ignored: true
    }
}
