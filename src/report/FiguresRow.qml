pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// The talk in four figures.
Row {
    id: root

    required property talkFigures value
    readonly property string unknown: "–"

    topPadding: 10
    bottomPadding: 12

    Repeater {
        model: [
            { figure: root.value.duration, caption: "report.stat.duration" },
            { figure: root.value.exact ? L.percent(Math.round(root.value.speechShare * 100)) : root.unknown, caption: "report.stat.speech" },
            { figure: root.value.turns, caption: "report.stat.turns" },
            { figure: root.value.exact ? root.value.longPauses : root.unknown, caption: "report.stat.long_pauses" }
        ]
        Column {
            id: stat
            required property var modelData
            width: root.width / 4
            Accessible.role: Accessible.StaticText
            Accessible.name: caption.text + ": " + figure.text
            SelectableText {
                id: figure
                width: parent.width - Theme.gapRow
                type: Theme.title
                color: stat.modelData.figure === root.unknown ? Theme.text3 : Theme.text1
                text: stat.modelData.figure
                Accessible.ignored: true
            }
            SelectableText {
                id: caption
                width: parent.width - Theme.gapRow
                type: Theme.caption
                color: Theme.text2
                text: L.t(stat.modelData.caption)
                Accessible.ignored: true
            }
        }
    }
}
