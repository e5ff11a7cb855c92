pragma Singleton

import QtQuick

// The keys that scroll what is read.
QtObject {
    // Scrolls `view` by a key. Whether it was one of those.
    function take(view: Flickable, event: var): bool {
        const page = view.height - 40;
        const top = view.originY - view.topMargin;
        const bottom = Math.max(top, view.originY + view.contentHeight + view.bottomMargin - view.height);
        const to = {
            [Qt.Key_PageDown]: view.contentY + page,
            [Qt.Key_Space]: view.contentY + (event.modifiers & Qt.ShiftModifier ? -page : page),
            [Qt.Key_PageUp]: view.contentY - page,
            [Qt.Key_End]: bottom,
            [Qt.Key_Home]: top
        }[event.key];
        if (to === undefined) return false;
        if (view instanceof ListView && event.key === Qt.Key_End) {
            view.positionViewAtEnd(); // how high a list is it only estimates before
            view.contentY = view.originY + view.contentHeight + view.bottomMargin - view.height;
        } else if (view instanceof ListView && event.key === Qt.Key_Home) {
            view.positionViewAtBeginning();
        } else view.contentY = Math.max(top, Math.min(bottom, to));
        return true;
    }
}
