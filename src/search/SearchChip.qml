pragma ComponentBehavior: Bound

import QtQml.Models
import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Ui

// A choice beside the field: of whom, when or where. Set, it can be taken away.
Button {
    id: root

    required property string symbol
    required property string name // of what is chosen
    property string idle: name // is said while nothing is
    required property var options // { value, text }
    property var current: "" // a value; the first option's: nothing is chosen
    readonly property bool set: options.length > 0 && current !== options[0].value

    signal chosen(var value)
    signal wanted() // the list is about to open

    text: set ? options.find(option => option.value === current)?.text ?? String(current) : idle
    implicitHeight: Theme.grown(26)
    leftPadding: 10
    rightPadding: set ? 6 : 10
    topPadding: 0
    bottomPadding: 0
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    onClicked: {
        root.wanted();
        menu.popup(root, 0, root.height + 4);
    }
    Accessible.role: Accessible.ButtonMenu
    Accessible.name: name + (set ? ": " + text : "")
    Accessible.onPressAction: root.clicked()
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()
    Keys.onDownPressed: root.clicked()
    Keys.onDeletePressed: if (set) root.chosen(options[0].value)

    background: Rectangle {
        radius: height / 2
        color: root.set ? (root.hovered ? Theme.tintHover(Theme.violet) : Theme.tint(Theme.violet))
            : root.pressed ? Theme.press : root.hovered ? Theme.fillHover : Theme.fill
        FocusRing { shown: root.visualFocus; corner: parent.radius }
    }
    contentItem: Row {
        spacing: 6
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            visible: !root.set
            size: 13
            name: root.symbol
            ink: Theme.text2
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, 180)
            type: Theme.buttonSmallType
            color: root.set ? Theme.inkViolet : Theme.text2
            elide: Text.ElideRight
            text: root.text
            Accessible.ignored: true
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.set
            symbol: "xmark"
            symbolSize: 10
            side: 18
            round: true
            focusPolicy: Qt.NoFocus
            help: L.t("search.chip.clear", root.name)
            onClicked: root.chosen(root.options[0].value)
        }
    }
    ContextMenu {
        id: menu
        name: root.name
        Instantiator {
            model: root.options
            delegate: Action {
                required property var modelData
                text: modelData.text
                onTriggered: root.chosen(modelData.value)
            }
            onObjectAdded: (index, object) => menu.insertAction(index, object as Action)
            onObjectRemoved: (index, object) => menu.removeAction(object as Action)
        }
    }
}
