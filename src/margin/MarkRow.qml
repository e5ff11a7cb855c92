import QtQuick
import Murmeli.Localisation
import Murmeli.Ui

// A mark: its moment, its text, which can be written anew in its place, and its removal.
Item {
    id: root

    required property string stamp
    required property string text
    property bool editing: false

    signal edited(string text)
    signal removed()

    function finish(): void {
        root.editing = false;
        root.edited(field.text);
    }

    implicitHeight: Math.max(Theme.grown(30), label.implicitHeight + 8)
    Accessible.role: Accessible.ListItem
    Accessible.name: stamp + ", " + text

    Label {
        id: time
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.grown(56)
        type: Theme.time
        color: Theme.inkViolet
        text: root.stamp
        Accessible.ignored: true
    }
    Label {
        id: label
        anchors { left: time.right; right: buttons.left; rightMargin: Theme.gapRow; verticalCenter: parent.verticalCenter }
        visible: !root.editing
        type: Theme.body
        wrapMode: Text.Wrap
        text: root.text
        Accessible.ignored: true
    }
    Field {
        id: field
        anchors { left: time.right; right: buttons.left; rightMargin: Theme.gapRow; verticalCenter: parent.verticalCenter }
        visible: root.editing
        implicitHeight: Theme.grown(28)
        name: L.t("mark.edit")
        onAccepted: root.finish()
        Keys.onEscapePressed: root.editing = false
        onActiveFocusChanged: if (!activeFocus && root.editing) root.finish()
    }
    Row {
        id: buttons
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        IconButton {
            symbol: "pencil"
            symbolSize: Theme.symbolSmall
            side: Theme.buttonSmall
            help: L.t("mark.edit")
            onClicked: {
                field.text = root.text;
                root.editing = true;
                field.forceActiveFocus(Qt.OtherFocusReason);
            }
        }
        IconButton {
            symbol: "trash"
            symbolSize: Theme.symbolSmall
            side: Theme.buttonSmall
            help: L.t("mark.remove")
            onClicked: root.removed()
        }
    }
}
