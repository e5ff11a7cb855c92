import QtQuick
import Murmeli.Localisation
import Murmeli.Ui

// Says for a moment that a mark was removed, and offers to bring it back.
Row {
    id: root

    signal regretted()

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
        onClicked: root.regretted()
    }
}
