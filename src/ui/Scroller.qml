import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// A content that may be higher than its place. What gets the keyboard scrolls into sight.
Flickable {
    id: root

    default property alias content: slot.data
    property real lead: 40 // kept in sight around what is shown
    property real head: 0 // what is nearer to the top than this is shown with the top

    // Brings an item of the content into sight.
    function show(item: Item): void {
        const top = item.mapToItem(slot, 0, 0).y - lead;
        const bottom = top + item.height + 2 * lead;
        if (top < contentY || item.height > height) contentY = top < head ? 0 : Math.min(top, Math.max(0, contentHeight - height));
        else if (bottom > contentY + height) contentY = Math.max(0, Math.min(contentHeight, bottom) - height);
    }

    // The same for one that has just appeared, as soon as the layouts have given it its place, and until the user
    // goes elsewhere.
    function showNew(item: Item): void {
        laidOut.item = item;
        laidOut.restart();
    }

    contentWidth: width
    contentHeight: slot.childrenRect.height
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    clip: interactive
    onContentHeightChanged: {
        returnToBounds();
        if (laidOut.item) laidOut.restart();
    }
    onMovementStarted: laidOut.item = null
    ScrollBar.vertical: ScrollThumb { }

    Item {
        id: slot
        width: root.width
        height: childrenRect.height
    }
    Timer {
        id: laidOut
        property Item item: null
        interval: 40
        onTriggered: if (item) root.show(item)
    }
    Connections {
        target: root.Window.window
        function onActiveFocusItemChanged() {
            const item = root.Window.activeFocusItem;
            laidOut.item = null;
            for (let up = item; up && root.visible; up = up.parent) {
                if (up === slot) root.show(item);
            }
        }
    }
}
