pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// One of a few values, chosen from a list that opens over it.
ComboBox {
    id: root

    required property var options // { value, text }
    required property string current // a value
    required property string name
    property string description
    property bool opening: false

    signal chosen(string value)

    implicitHeight: Theme.grown(30)
    implicitWidth: implicitContentWidth + 20 + Theme.symbolSmall + 8
    leftPadding: 12
    rightPadding: 8
    topPadding: 0
    bottomPadding: 0
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    wheelEnabled: false
    model: options
    textRole: "text"
    valueRole: "value"
    currentIndex: options.findIndex(option => option.value === current)
    onActivated: index => {
        root.chosen(options[index].value);
        currentIndex = Qt.binding(() => options.findIndex(option => option.value === current)); // also when it was refused
    }

    Accessible.role: Accessible.ComboBox
    Accessible.name: name + ", " + displayText
    Accessible.description: description
    Accessible.onPressAction: popup.open()
    // Return opens the list; its release, which would choose and close, is then no answer to it.
    Keys.onPressed: event => {
        if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && !popup.visible) {
            opening = true;
            event.accepted = true;
            popup.open();
        }
    }
    Keys.onReleased: event => {
        if (opening && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)) {
            opening = false;
            event.accepted = true;
        }
    }

    background: Rectangle {
        radius: Theme.rField
        color: root.pressed ? Theme.press : root.hovered ? Theme.fillHover : Theme.fill
        FocusRing { shown: root.visualFocus; corner: parent.radius }
    }
    contentItem: Label {
        verticalAlignment: Text.AlignVCenter
        type: Theme.button
        text: root.displayText
        Accessible.ignored: true
    }
    indicator: Symbol {
        x: root.width - width - 8
        anchors.verticalCenter: parent.verticalCenter
        size: Theme.symbolSmall
        name: "chevron.up.chevron.down"
        ink: Theme.text3
    }
    delegate: ItemDelegate {
        id: line
        required property var modelData
        required property int index
        readonly property bool marked: root.highlightedIndex === index
        width: ListView.view.width
        height: Theme.grown(30)
        padding: 0
        Accessible.role: Accessible.ListItem
        Accessible.name: modelData.text
        Accessible.selected: root.currentIndex === index
        Accessible.onPressAction: line.clicked()
        background: Rectangle {
            radius: 7
            color: line.marked ? Theme.fillViolet : Theme.clear
        }
        contentItem: Item {
            Symbol {
                x: 9
                anchors.verticalCenter: parent.verticalCenter
                visible: root.currentIndex === line.index
                size: Theme.symbolSmall
                name: "checkmark"
                ink: line.marked ? Theme.white : Theme.text1
            }
            Label {
                x: 30
                anchors.verticalCenter: parent.verticalCenter
                color: line.marked ? Theme.white : Theme.text1
                text: line.modelData.text
                Accessible.ignored: true
            }
        }
    }
    popup: Popup {
        x: root.width - width
        y: -6
        width: Math.max(root.width, 170)
        padding: 6
        margins: Theme.gapRow
        onAboutToShow: root.forceActiveFocus(Qt.PopupFocusReason) // else another control takes the keys
        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: root.popup.visible ? root.delegateModel : null
            currentIndex: root.highlightedIndex
            highlightMoveDuration: 0
        }
        background: Rectangle {
            radius: Theme.rCard
            color: Theme.bgPop
            border.width: Theme.hair
            border.color: Theme.popEdge
        }
        enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
        exit: Transition { NumberAnimation { property: "opacity"; to: 0; duration: Theme.quick } }
    }
}
