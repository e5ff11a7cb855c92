import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// Shows where in a long content one is, and nothing when all of it is seen.
ScrollBar {
    id: root

    padding: 2
    policy: ScrollBar.AsNeeded
    minimumSize: 0.08
    visible: size < 1
    Accessible.ignored: true // the keys scroll

    contentItem: Rectangle {
        implicitWidth: Theme.scrollThumb
        radius: width / 2
        color: Theme.lineStrong
        opacity: root.active || root.hovered ? 1 : 0.55
        Behavior on opacity { NumberAnimation { duration: Theme.quick } }
    }
    background: null
}
