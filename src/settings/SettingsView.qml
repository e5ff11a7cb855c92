pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Localisation
import Murmeli.Permissions
import Murmeli.Receipts
import Murmeli.Settings
import Murmeli.Ui

// Every setting, section by section, and the permissions. In a window of its own, or as a tab of the main one.
Rectangle {
    id: root

    required property SettingsModel model
    property bool windowed: false // in its own window
    property ViewMemory memory: null
    readonly property int side: windowed ? Theme.padWindow : Theme.padMain

    color: Theme.bgWindow
    Component.onCompleted: {
        model.opened();
        if (memory !== null) place.start();
    }
    Component.onDestruction: memory?.keep("settings", scroll.contentY)

    Connections {
        target: root.model
        enabled: root.windowed
        function onPermissionsWanted(): void {
            permissions.nextItemInFocusChain().forceActiveFocus(Qt.OtherFocusReason);
            scroll.showNew(permissions);
        }
    }
    Timer {
        id: place
        interval: 0 // once the rows have their places
        onTriggered: scroll.contentY = root.memory.kept("settings", 0)
    }
    Scroller {
        id: scroll
        anchors.fill: parent
        enabled: sent.wanted === null
        visible: enabled
        head: 120 // the title

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
                id: permissions
                width: column.width
                model: root.model.permissionsFor(root)
                compact: true
            }
        }
    }
    Loader {
        id: sent

        readonly property SentModel wanted: root.model.sent

        property Item before: null // had the keyboard

        function show(): void {
            if (wanted === null) {
                source = "";
                before?.forceActiveFocus(Qt.OtherFocusReason);
                before = null;
                return;
            }
            before = root.Window.activeFocusItem;
            setSource("qrc:/qt/qml/Murmeli/Receipts/SentPane.qml", { sent: wanted });
        }

        anchors.fill: parent
        Component.onCompleted: show()
        onWantedChanged: show()
        onLoaded: (item as SentPane).focusFirst()
        Connections {
            target: sent.item as SentPane
            function onClosed(): void {
                root.model.closeSent();
            }
        }
    }
}
