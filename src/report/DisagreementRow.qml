pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// Who held what, and how it ended.
ClaimCard {
    id: root

    required property disagreement value

    stamps: value.stamps
    stampsShown: false // each side has its own
    title: value.topic

    Repeater {
        model: root.value.sides
        RowLayout {
            id: side
            required property disagreementSide modelData
            width: root.width
            spacing: 10
            SelectableText {
                Layout.topMargin: 8
                Layout.preferredWidth: Theme.grown(104) // most names in one piece
                Layout.alignment: Qt.AlignTop
                type: Theme.label
                text: side.modelData.who
            }
            SelectableText {
                Layout.topMargin: 7
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignTop
                type: Theme.running
                color: Theme.text2
                text: side.modelData.position
            }
            StampChip {
                Layout.topMargin: 7
                Layout.alignment: Qt.AlignTop
                visible: stamp.length > 0
                stamp: side.modelData.at
                loader: root.loader
            }
        }
    }
    SelectableText {
        width: root.width
        visible: root.value.outcome.length > 0
        topPadding: 10
        type: Theme.sub
        text: L.t("report.outcome", root.value.outcome)
    }
}
