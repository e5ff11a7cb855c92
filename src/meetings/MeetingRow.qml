import QtQuick
import Murmeli.Meetings
import Murmeli.Ui

// A meeting in the list, below its day's heading when it is the day's first. The heading is not the list's own:
// an assistive program would be told it after the meeting.
Item {
    id: root

    required property string time
    required property string title
    required property string summary
    required property point titleHit
    required property point summaryHit
    required property string heard
    property string dayText
    property bool first: false // of its day
    property bool current: false
    required property string date // empty where a day stands above
    property bool plain: false // what the meeting was about stands below in other words
    property real below: 0 // height of what stands under the row
    readonly property real rowBottom: row.y + row.height

    signal opened()

    implicitHeight: rowBottom + below

    Label {
        id: day
        leftPadding: Theme.padMain
        topPadding: 18
        bottomPadding: 7
        visible: root.first
        type: Theme.heading
        color: Theme.text2
        text: root.dayText
        Accessible.role: Accessible.Heading
    }
    Rectangle {
        id: row
        x: 20
        y: root.first ? day.height : 0
        width: parent.width - 40
        height: Math.max(texts.height, root.date.length > 0 ? Theme.time.line + Theme.caption.line : 0) + 18
        radius: Theme.rRow
        color: area.pressed ? Theme.press : area.containsMouse ? Theme.hover : Theme.clear

        Accessible.role: Accessible.ListItem
        Accessible.name: root.title + ", " + (root.date || root.dayText.toLowerCase()) + ", " + root.time
        Accessible.description: (note.text ? note.text + ". " : "") + root.summary
        Accessible.focusable: true
        Accessible.focused: root.current
        Accessible.onPressAction: root.opened()

        MouseArea {
            id: area
            anchors.fill: parent
            hoverEnabled: true
            Accessible.ignored: true
            onClicked: root.opened()
        }
        Label {
            x: Theme.padPanel
            y: 9
            width: Theme.grown(92)
            type: Theme.time
            color: Theme.text2
            text: root.time
            Accessible.ignored: true
        }
        Label {
            x: Theme.padPanel
            y: 9 + Theme.time.line
            width: Theme.grown(92)
            visible: text.length > 0
            type: Theme.caption
            color: Theme.text3
            text: root.date
            Accessible.ignored: true
        }
        Column {
            id: texts
            x: Theme.grown(122)
            y: 9
            width: parent.width - x - 44
            HitLabel {
                id: heading
                width: parent.width
                type: Theme.row
                text: root.title
                hit: root.titleHit
                Accessible.ignored: true
            }
            HitLabel {
                width: parent.width
                visible: text.length > 0 && !root.plain
                type: Theme.sub
                color: root.summaryHit.x >= 0 ? Theme.text1 : Theme.text3 // readable on its mark
                text: root.summary
                hit: root.summaryHit
                Accessible.ignored: true
            }
            HeardNote {
                id: note
                width: parent.width
                alreadySaid: true
                key: root.heard
            }
        }
        Symbol {
            anchors { right: parent.right; rightMargin: Theme.padPanel; verticalCenter: parent.verticalCenter }
            size: Theme.symbolText
            name: "chevron.right"
            ink: Theme.text3
            opacity: area.containsMouse || root.current ? 1 : 0
            Behavior on opacity { NumberAnimation { duration: Theme.quick } }
        }
        // Loaders take no bound components yet.
        // qmllint disable unqualified
        Loader { // most titles are seen whole
            anchors.fill: parent
            active: area.containsMouse && heading.truncated
            sourceComponent: HelpTip {
                wanted: area.containsMouse
                text: root.title
            }
        }
        // qmllint enable unqualified
        FocusRing {
            shown: root.current
            corner: Theme.rRow
            gap: -Theme.focusWidth
        }
    }
}
