pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Localisation
import Murmeli.Search
import Murmeli.Ui

// Under the field while something is looked for: of whom, when, where, and how much is found.
Item {
    id: root

    required property SearchModel search

    implicitHeight: chips.height + (layout.visible ? layout.height + 8 : 0)

    Row {
        id: chips
        x: Theme.padMain
        spacing: 6
        SearchChip {
            symbol: "person.crop.circle"
            name: L.t("search.who")
            options: [{ value: "", text: L.t("search.who.all") }].concat(root.search.speakers.map(name => ({ value: name, text: name })))
            current: root.search.speaker
            onWanted: root.search.findSpeakers()
            onChosen: value => root.search.speaker = value
            Component.onCompleted: root.search.findSpeakers()
        }
        SearchChip {
            symbol: "calendar"
            name: L.t("search.when")
            options: [
                { value: SearchModel.Ever, text: L.t("search.when.ever") },
                { value: SearchModel.Week, text: L.t("search.when.week") },
                { value: SearchModel.Month, text: L.t("search.when.month") },
                { value: SearchModel.Year, text: L.t("search.when.year") }
            ]
            current: root.search.period
            onChosen: value => root.search.period = value
        }
        SearchChip {
            symbol: "line.3.decrease"
            name: L.t("search.where")
            idle: L.t("search.where.everywhere")
            options: [
                { value: SearchModel.Everywhere, text: L.t("search.where.everywhere") },
                { value: SearchModel.InTitle, text: L.t("search.where.title") },
                { value: SearchModel.InProtocol, text: L.t("search.where.protocol") },
                { value: SearchModel.InAnalysis, text: L.t("search.where.analysis") },
                { value: SearchModel.InTranscript, text: L.t("search.where.transcript") }
            ]
            current: root.search.where
            onChosen: value => root.search.where = value
        }
    }
    Row {
        anchors { right: parent.right; rightMargin: Theme.padMain; verticalCenter: chips.verticalCenter }
        spacing: 10
        Label {
            id: counts
            anchors.verticalCenter: parent.verticalCenter
            type: Theme.caption
            color: Theme.text3
            text: root.search.revision >= 0 ? root.search.counts(L.language) : ""
            Accessible.role: Accessible.StatusBar
        }
        LinkButton {
            anchors.verticalCenter: parent.verticalCenter
            visible: counts.text.length > 0
            symbol: "chevron.up.chevron.down"
            type: Theme.buttonSmallType
            ink: Theme.text2
            text: root.search.best ? L.t("search.best") : L.t("search.newest")
            spokenName: L.t("search.order", text)
            onClicked: root.search.best = !root.search.best
        }
    }
    Row {
        id: layout
        anchors { left: parent.left; leftMargin: Theme.padMain; top: chips.bottom; topMargin: 8 }
        visible: root.search.layout.length > 0
        height: visible ? Math.max(asTyped.height, 20) : 0
        spacing: 7
        Accessible.role: Accessible.StatusBar
        Accessible.name: sayLayout.text
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            size: Theme.symbolText
            name: "globe"
            ink: Theme.inkViolet
        }
        Label {
            id: sayLayout
            anchors.verticalCenter: parent.verticalCenter
            type: Theme.sub
            color: Theme.text2
            text: L.t("search.layout", root.search.layout)
            Accessible.ignored: true
        }
        LinkButton {
            id: asTyped
            anchors.verticalCenter: parent.verticalCenter
            symbol: ""
            text: L.t("search.as_typed")
            onClicked: root.search.searchAsTyped()
        }
    }
}
