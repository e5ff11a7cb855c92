import QtQuick
import QtQuick.Layouts
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// What claims of every kind have in common: a line with what it is about, what it says, the moments that it stands on,
// and what was said at the one that is pressed.
Column {
    id: root

    required property ReportLoader loader
    required property var stamps // texts
    property bool stampsShown: stamps.length > 0
    property bool stampsBelow: false // else beside the title
    property bool compact: false
    property string title
    property string note // under the title
    property string lead // beside the title
    property color leadInk: Theme.text2
    property string figure // at the line's end
    property bool large: false // the figure is what it is about
    property Component sign: null // before the title
    property Component badge: null // after the figure
    property string body
    property var bodyType: Theme.claim
    property color bodyInk: Theme.text2
    default property alias details: details.data // between the body and the stamps below
    readonly property bool holdsOpen: stamps.includes(loader.openStamp)

    topPadding: compact ? 10 : 13
    bottomPadding: topPadding

    // Loaders take no bound components yet.
    // qmllint disable unqualified
    component Chips: Flow {
        id: chips
        required property ReportLoader loader
        required property var stamps
        spacing: 6
        Repeater {
            model: chips.stamps
            StampChip {
                required property string modelData
                stamp: modelData
                loader: chips.loader
            }
        }
    }

    RowLayout {
        width: parent.width
        spacing: Theme.gapRow

        Loader {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 1
            active: root.sign !== null
            visible: active
            sourceComponent: root.sign
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.maximumWidth: Math.max(title.implicitWidth, note.active ? note.implicitWidth : 0) + 1
            Layout.alignment: Qt.AlignTop
            spacing: 0
            SelectableText {
                id: title
                Layout.fillWidth: true
                type: root.compact ? Theme.label : Theme.row
                text: root.title
            }
            Loader {
                id: note
                Layout.fillWidth: true
                active: root.note.length > 0
                visible: active
                sourceComponent: SelectableText {
                    type: Theme.caption
                    color: Theme.text3
                    text: root.note
                }
            }
        }
        SelectableText {
            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth + 1
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 2
            visible: root.lead.length > 0
            type: Theme.sub
            color: root.leadInk
            text: root.lead
        }
        Item { Layout.fillWidth: true }
        SelectableText {
            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth + 1
            Layout.alignment: root.large ? Qt.AlignVCenter : Qt.AlignTop
            Layout.topMargin: root.large ? 0 : 1
            Layout.rightMargin: root.large ? 6 : 0
            visible: root.figure.length > 0
            type: root.large ? Theme.head : Theme.sub
            color: root.large ? Theme.text1 : Theme.text2
            text: root.figure
        }
        Loader {
            Layout.alignment: Qt.AlignTop
            active: root.badge !== null
            visible: active
            sourceComponent: root.badge
        }
        Loader {
            Layout.alignment: root.large ? Qt.AlignVCenter : Qt.AlignTop
            Layout.maximumWidth: root.width / 2
            active: root.stampsShown && !root.stampsBelow
            visible: active
            sourceComponent: Chips {
                loader: root.loader
                stamps: root.stamps
            }
        }
    }
    SelectableText {
        width: parent.width
        topPadding: 3
        visible: text.length > 0
        type: root.bodyType
        color: root.bodyInk
        text: root.body
    }
    Column {
        id: details
        width: parent.width
        visible: children.length > 0
    }
    Loader {
        width: parent.width
        active: root.stampsShown && root.stampsBelow
        visible: active
        sourceComponent: Item {
            implicitHeight: below.height + 9
            Chips {
                id: below
                y: 9
                width: parent.width
                loader: root.loader
                stamps: root.stamps
            }
        }
    }
    Loader {
        id: quotation
        property bool wanted: false
        width: parent.width
        active: root.holdsOpen || wanted
        visible: active
        onLoaded: wanted = true // it folds before it goes
        sourceComponent: Quotation {
            lines: root.holdsOpen ? root.loader.quotation : []
            onMomentAsked: root.loader.goToMoment()
        }
    }
    // qmllint enable unqualified
}
