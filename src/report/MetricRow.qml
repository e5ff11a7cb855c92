import QtQuick
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// How many of the results have a property that can be checked.
Item {
    id: root

    required property reportMetric value
    required property real growth // of the bar, from 0 to 1

    implicitHeight: Theme.grown(34)
    Accessible.role: Accessible.ProgressBar
    Accessible.name: title.text + ": " + value.done + " " + L.t("report.metric.name", value.total)

    SelectableText {
        id: title
        anchors { left: parent.left; right: bar.left; rightMargin: Theme.padPanel; verticalCenter: parent.verticalCenter }
        text: L.t(root.value.titleKey)
        Accessible.ignored: true
    }
    ProgressLine {
        id: bar
        anchors { right: figure.left; verticalCenter: parent.verticalCenter }
        width: Theme.grown(120)
        value: root.value.share * root.growth
        Accessible.ignored: true
    }
    SelectableText {
        id: figure
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        width: Math.max(52, implicitWidth)
        horizontalAlignment: TextEdit.AlignRight
        type: Theme.link
        text: root.value.done + " / " + root.value.total
        Accessible.ignored: true
    }
}
