import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// A few commands that open where they are asked for.
Menu {
    id: root

    required property string name // of what it is for
    property Item before: null // had the keyboard, and gets it back

    padding: 6
    margins: Theme.gapRow
    delegate: ContextMenuItem { }
    contentItem: ListView {
        implicitHeight: contentHeight
        interactive: contentHeight > height
        clip: interactive
        model: root.contentModel
        currentIndex: root.currentIndex
    }
    onAboutToShow: {
        before = parent.Window.activeFocusItem;
        contentItem.parent.Accessible.name = name;
    }
    onClosed: if (before) before.forceActiveFocus(Look.typing ? Qt.TabFocusReason : Qt.PopupFocusReason)
    onVisibleChanged: if (visible) {
        let first = 0;
        while (first < count - 1 && !itemAt(first).enabled) ++first;
        currentIndex = Look.typing ? first : -1; // who opened it by key goes on by key
    }
    background: Rectangle {
        implicitWidth: Theme.grown(200)
        radius: Theme.rCard
        color: Theme.bgPop
        border.width: Theme.hair
        border.color: Theme.popEdge
    }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
    exit: Transition { NumberAnimation { property: "opacity"; to: 0; duration: Theme.quick } }
}
