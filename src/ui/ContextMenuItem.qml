import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// A command of a menu; what does not apply is not there.
MenuItem {
    id: root

    function choose(): void {
        root.menu.dismiss();
        root.action.trigger();
    }

    implicitHeight: visible ? 30 : 0
    implicitWidth: implicitContentWidth
    padding: 0
    visible: enabled
    Accessible.role: Accessible.MenuItem
    Accessible.name: text
    Accessible.onPressAction: root.choose()
    Keys.onReturnPressed: root.choose()
    Keys.onEnterPressed: root.choose()

    background: Rectangle {
        radius: 7
        color: root.highlighted ? Theme.fillViolet : Theme.clear
    }
    contentItem: Label {
        leftPadding: 12
        rightPadding: 12
        verticalAlignment: Text.AlignVCenter
        color: root.highlighted ? Theme.white : Theme.text1
        text: root.text
        Accessible.ignored: true
    }
}
