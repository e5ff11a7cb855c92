import QtQuick
import Murmeli.Permissions
import Murmeli.Ui

// The pane on an empty window.
Rectangle {
    id: root

    required property PermissionsModel model
    required property bool compact

    color: Theme.bgWindow

    PermissionsPane {
        x: 36
        y: 36
        width: root.width - 72
        model: root.model
        compact: root.compact
    }
}
