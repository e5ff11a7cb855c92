pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Localisation
import Murmeli.Margin
import Murmeli.Ui

// The marks of a meeting, as a section of its protocol.
Item {
    id: root

    required property MeetingMarks marks
    readonly property bool wanted: marks.marks.length > 0 || marks.removed || marks.failed

    implicitHeight: wanted ? rows.height + 34 : 0
    visible: wanted

    Rectangle {
        width: parent.width
        height: Theme.hair
        color: Theme.line
    }
    Label {
        y: 18
        width: Theme.grown(140)
        type: Theme.labelStrong
        wrapMode: Text.Wrap
        text: L.t("mark.section")
        Accessible.role: Accessible.Heading
    }
    Column {
        id: rows
        x: 176
        y: 14
        width: parent.width - x
        spacing: 2
        Accessible.role: Accessible.List
        Accessible.name: L.t("mark.section")

        Repeater {
            model: root.marks.marks
            delegate: MarkRow {
                required property int index
                required property mark modelData
                width: rows.width
                stamp: modelData.stamp
                text: modelData.text
                onEdited: text => root.marks.edit(index, text)
                onRemoved: root.marks.remove(index)
            }
        }
        Row {
            visible: root.marks.removed
            height: visible ? Theme.grown(30) : 0
            spacing: Theme.gapRow
            Label {
                anchors.verticalCenter: parent.verticalCenter
                type: Theme.sub
                color: Theme.text2
                text: L.t("mark.removed")
                Accessible.role: Accessible.AlertMessage
            }
            PillButton {
                anchors.verticalCenter: parent.verticalCenter
                text: L.t("mark.bring_back")
                onClicked: root.marks.bringBack()
            }
        }
        Label {
            width: parent.width
            visible: root.marks.failed
            type: Theme.sub
            color: Theme.inkRed
            wrapMode: Text.Wrap
            text: L.t("mark.failed")
            Accessible.role: Accessible.AlertMessage
        }
    }
}
