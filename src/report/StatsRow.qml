import QtQuick
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// The talk in four figures.
Row {
    id: root

    required property reportRow row
    readonly property string unknown: "–"

    topPadding: 10
    bottomPadding: 12

    // qmllint disable unqualified
    Repeater {
        model: [
            { figure: root.row.value, caption: "report.stat.duration" },
            { figure: root.row.firm ? L.percent(Math.round(root.row.share * 100)) : root.unknown, caption: "report.stat.speech" },
            { figure: root.row.count, caption: "report.stat.turns" },
            { figure: root.row.firm ? root.row.total : root.unknown, caption: "report.stat.long_pauses" }
        ]
        Column {
            id: stat
            required property var modelData
            width: root.width / 4
            Accessible.role: Accessible.StaticText
            Accessible.name: caption.text + ": " + figure.text
            Label {
                id: figure
                type: Theme.title
                color: stat.modelData.figure === root.unknown ? Theme.text3 : Theme.text1
                text: stat.modelData.figure
                Accessible.ignored: true
            }
            Label {
                id: caption
                width: parent.width - Theme.gapRow
                type: Theme.caption
                color: Theme.text2
                text: L.t(stat.modelData.caption)
                Accessible.ignored: true
            }
        }
    }
    // qmllint enable unqualified
}
