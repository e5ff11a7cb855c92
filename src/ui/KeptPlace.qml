import QtQuick
import Murmeli.Ui

// Brings a list back to where it stood when the view before this one was let go.
QtObject {
    id: root

    required property ListView list
    required property ViewMemory memory // null: nothing is kept
    required property string key
    property bool restored: false

    Component.onCompleted: {
        const place = memory?.kept(key, null) ?? null;
        if (place === null || place.row >= list.count) return;
        list.currentIndex = place.current; // before the place, which it may change
        list.positionViewAtIndex(place.row, ListView.Beginning);
        list.contentY += place.beyond;
        restored = true;
    }
    Component.onDestruction: {
        const row = list.indexAt(0, list.contentY + 1);
        const item = row >= 0 ? list.itemAtIndex(row) : null;
        if (item !== null) memory?.keep(key, { row, beyond: list.contentY - item.y, current: list.currentIndex });
    }
}
