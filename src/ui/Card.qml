import QtQuick
import QtQuick.Layouts
import Murmeli.Ui

// Rows of equals on one surface, hairlines between them.
Rectangle {
    id: root

    default property alias rows: column.data

    implicitWidth: column.implicitWidth
    implicitHeight: column.implicitHeight
    radius: Theme.rCard
    color: Theme.bgPanelCard
    border.width: Theme.hair
    border.color: Theme.line

    ColumnLayout {
        id: column
        anchors.fill: parent
        spacing: 0
    }
}
