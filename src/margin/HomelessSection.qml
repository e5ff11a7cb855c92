pragma ComponentBehavior: Bound

import QtQml.Models
import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Margin
import Murmeli.Ui

// Marks that have found no meeting: one row, which unfolds to put each to a meeting or remove it.
Column {
    id: root

    required property HomelessMarks homeless
    property bool unfolded: false
    readonly property bool wanted: homeless.marks.length > 0 || homeless.removed || homeless.failed

    visible: wanted
    spacing: 2

    LinkButton {
        id: heading
        visible: root.homeless.marks.length > 0
        symbol: root.unfolded ? "chevron.down" : "chevron.right"
        text: L.t("mark.homeless", root.homeless.marks.length)
        Accessible.checkable: true
        Accessible.checked: root.unfolded
        onClicked: root.unfolded = !root.unfolded
    }
    Column {
        id: rows
        width: parent.width
        visible: root.unfolded
        Accessible.role: Accessible.List
        Accessible.name: heading.text

        Repeater {
            model: root.unfolded ? root.homeless.marks : []
            delegate: Item {
                id: row

                required property mark modelData

                width: rows.width
                height: Math.max(Theme.grown(34), words.implicitHeight + 12)
                Accessible.role: Accessible.ListItem
                Accessible.name: moment.text + ", " + words.text

                Label {
                    id: moment
                    x: Theme.padPanel
                    anchors.verticalCenter: parent.verticalCenter
                    width: Theme.grown(150)
                    type: Theme.time
                    color: Theme.inkViolet
                    text: L.language && root.homeless.when(row.modelData)
                    Accessible.ignored: true
                }
                Label {
                    id: words
                    anchors { left: moment.right; right: buttons.left; rightMargin: Theme.gapRow; verticalCenter: parent.verticalCenter }
                    type: Theme.body
                    wrapMode: Text.Wrap
                    text: row.modelData.text
                    Accessible.ignored: true
                }
                Row {
                    id: buttons
                    anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                    spacing: Theme.gapSmall
                    PillButton {
                        id: putting
                        text: L.t("mark.put")
                        spokenName: L.t("mark.put.name")
                        onClicked: homes.openFor(row.modelData, putting)
                    }
                    IconButton {
                        anchors.verticalCenter: parent.verticalCenter
                        symbol: "trash"
                        symbolSize: Theme.symbolSmall
                        side: Theme.buttonSmall
                        help: L.t("mark.remove")
                        onClicked: {
                            heading.forceActiveFocus(Look.typing ? Qt.TabFocusReason : Qt.OtherFocusReason);
                            root.homeless.remove(row.modelData);
                        }
                    }
                }
            }
        }
    }
    ContextMenu {
        id: homes

        property var chosen: null // a mark

        function openFor(mark: var, button: Item): void {
            homes.chosen = mark;
            choices.model = root.homeless.nearest(mark);
            homes.popup(button, 0, button.height + Theme.gapSmall);
        }

        width: Theme.grown(360)
        name: L.t("mark.put.name")

        Instantiator {
            id: choices
            delegate: Action {
                required property string modelData
                text: root.homeless.line(modelData)
                onTriggered: {
                    homes.before = heading; // the row goes
                    root.homeless.put(homes.chosen, modelData);
                }
            }
            onObjectAdded: (index, object) => homes.insertAction(index, object as Action)
            onObjectRemoved: (index, object) => homes.removeAction(object as Action)
        }
    }
    RemovedMark {
        leftPadding: Theme.padPanel
        visible: root.homeless.removed
        onRegretted: root.homeless.bringBack()
    }
    Label {
        leftPadding: Theme.padPanel
        visible: root.homeless.failed
        type: Theme.sub
        color: Theme.inkRed
        text: L.t("mark.failed")
        Accessible.role: Accessible.AlertMessage
    }
}
