pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Localisation
import Murmeli.Meetings
import Murmeli.Search
import Murmeli.Ui

// A meeting in the list, and below it the places in which something was found, a few of them at first.
MeetingRow {
    id: root

    required property int index
    required property string meetingId
    required property string day
    required property SearchModel search
    property bool unfolded: false
    property int stop: -2 // of the keyboard: -1 the meeting, else a place or what unfolds them; -2 elsewhere
    readonly property var all: search.searching && search.revision >= 0 ? search.placesIn(meetingId) : []
    readonly property int shown: unfolded ? all.length : Math.min(3, all.length)
    readonly property int stops: shown + (all.length > shown ? 1 : 0)

    signal placeOpened(foundPlace place, int stop)
    signal unfold()

    function stopItem(stop: int): Item {
        if (stop < 0) return root;
        return stop < shown ? places.itemAt(stop) as Item : more as Item;
    }
    function open(stop: int): void {
        if (stop < shown) root.placeOpened(all[stop], stop);
        else root.unfold();
    }

    current: stop === -1
    plain: all.length > 0
    below: list.height

    Column {
        id: list
        x: 20 + Theme.grown(122)
        y: root.rowBottom
        width: parent.width - x - 40
        bottomPadding: root.all.length > 0 ? 6 : 0
        visible: root.all.length > 0
        height: visible ? implicitHeight : 0
        Accessible.role: Accessible.List
        Accessible.name: root.title

        Repeater {
            id: places
            model: root.shown
            delegate: PlaceRow {
                required property int index

                width: list.width
                search: root.search
                place: root.all[index]
                current: root.stop === index
                onOpened: root.placeOpened(root.all[index], index)
            }
        }
        LinkButton {
            id: more
            visible: root.all.length > root.shown
            leftPadding: 0
            symbol: ""
            type: Theme.buttonSmallType
            text: L.t("search.more_places", L.count("search.places", root.all.length - root.shown))
            focusPolicy: Qt.NoFocus
            onClicked: root.unfold()
            FocusRing { shown: root.stop === root.shown; corner: Theme.rSmall }
        }
    }
}
