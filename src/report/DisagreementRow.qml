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
                Layout.preferredWidth: 74
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
    RowLayout {
        width: root.width
        visible: root.value.outcome.length > 0
        spacing: Theme.gapSmall
        Label {
            Layout.topMargin: 10
            Layout.alignment: Qt.AlignTop
            type: Theme.sub
            color: Theme.text3
            text: L.t("report.outcome", "").trim()
        }
        SelectableText {
            Layout.topMargin: 10
            Layout.fillWidth: true
            type: Theme.sub
            text: root.value.outcome
        }
    }
}
