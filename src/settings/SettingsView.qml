pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Permissions
import Murmeli.Settings
import Murmeli.Ui

// Every setting, section by section, and the permissions. In a window of its own, or as a tab of the main one.
Rectangle {
    id: root

    required property SettingsModel model
    property bool windowed: false // in its own window
    readonly property int side: windowed ? Theme.padWindow : Theme.padMain

    color: Theme.bgWindow
    Component.onCompleted: model.opened()

    Flickable {
        id: scroll

        // The keyboard may go to what lies beyond the edge.
        function show(item: Item): void {
            const top = item.mapToItem(column, 0, 0).y - 40;
            const bottom = top + item.height + 80;
            if (top < contentY) contentY = top < 120 ? 0 : top; // with the title, if it is near
            else if (bottom > contentY + height) contentY = Math.min(contentHeight - height, bottom - height);
        }

        anchors.fill: parent
        contentHeight: column.height
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollThumb { }

        Column {
            id: column
            x: root.side
            width: Math.max(0, Math.min(scroll.width - 2 * root.side, root.windowed ? 900 : 720))
            bottomPadding: 32

            Label {
                topPadding: (root.windowed ? 28 : 26) + Theme.chromeInset
                leftPadding: root.windowed ? Theme.gapSmall : 0
                type: Theme.display
                text: L.t("settings.title")
                Accessible.role: Accessible.Heading
            }
            Repeater {
                model: root.model.sections
                Column {
                    id: section
                    required property settingSection modelData
                    width: column.width
                    Label {
                        topPadding: 22
                        leftPadding: Theme.gapSmall
                        bottomPadding: 8
                        type: Theme.heading
                        color: Theme.text2
                        text: L.t("section." + section.modelData.id)
                        Accessible.role: Accessible.Heading
                    }
                    Rectangle {
                        width: column.width
                        height: rows.height
                        radius: Theme.rCard
                        color: Theme.bgCard
                        border.width: Theme.hair
                        border.color: Theme.line
                        Column {
                            id: rows
                            Repeater {
                                model: section.modelData.rows
                                SettingRowView {
                                    required property settingRow modelData
                                    required property int index
                                    width: column.width
                                    row: modelData
                                    model: root.model
                                    first: index === 0
                                }
                            }
                        }
                    }
                }
            }
            Label {
                topPadding: 22
                leftPadding: Theme.gapSmall
                bottomPadding: 8
                type: Theme.heading
                color: Theme.text2
                text: L.t("section.permissions")
                Accessible.role: Accessible.Heading
            }
            PermissionsPane {
                width: column.width
                model: root.model.permissionsFor(root)
                compact: true
            }
        }
    }
    Connections {
        target: root.Window.window
        function onActiveFocusItemChanged() {
            const item = root.Window.activeFocusItem;
            if (item && root.visible) {
                for (let up = item; up; up = up.parent) {
                    if (up === column) {
                        scroll.show(item);
                        return;
                    }
                }
            }
        }
    }
}
