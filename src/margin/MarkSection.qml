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

    implicitHeight: wanted ? Math.max(rows.height, Theme.grown(44)) + 34 : 0
    visible: wanted

    Rectangle {
        width: parent.width
        height: Theme.hair
        color: Theme.line
    }
    Label {
        id: heading
        y: 18
        width: Theme.grown(140)
        type: Theme.labelStrong
        wrapMode: Text.Wrap
        text: L.t("mark.section")
        Accessible.role: Accessible.Heading
    }
    Label {
        anchors { top: heading.bottom; left: heading.left; right: heading.right }
        type: Theme.caption
        color: Theme.text3
        wrapMode: Text.Wrap
        text: L.t("mark.private")
    }
    Column {
        id: rows
        x: Theme.grown(176)
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
        RemovedMark {
            visible: root.marks.removed
            onRegretted: root.marks.bringBack()
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
