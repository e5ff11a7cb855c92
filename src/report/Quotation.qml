import QtQuick
import Murmeli.Localisation
import Murmeli.Ui

// What was said at a moment; pressed, it shows the lines before and after as well.
Item {
    id: root

    required property var lines // the text, the line before, the line after; empty: folded
    property var shown: [] // stays while it folds
    property bool wide: false
    readonly property bool unfolded: lines.length > 0
    readonly property string before: shown[1] ?? ""
    readonly property string after: shown[2] ?? ""
    readonly property bool more: before.length > 0 || after.length > 0
    property real extent: unfolded ? 1 : 0

    signal momentAsked()

    function toggle(): void {
        root.wide = !root.wide && root.more;
    }

    implicitHeight: (card.height + 9) * Theme.unfolded(extent)
    visible: extent > 0
    clip: extent < 1
    opacity: extent
    onLinesChanged: {
        if (lines.length === 0) return;
        shown = lines;
        wide = false;
    }

    Behavior on extent { NumberAnimation { duration: Theme.base; easing.type: Easing.OutCubic } }

    Rectangle {
        id: card
        y: 9
        width: root.width
        height: said.height + 20
        radius: Theme.rSmall
        color: Theme.tintSoft(Theme.violet)
        readonly property bool stop: root.unfolded // of the keyboard
        Accessible.role: Accessible.Button
        Accessible.name: middle.text
        Accessible.description: root.more ? L.t("report.quote.more") : ""
        Accessible.focusable: true
        Accessible.onPressAction: root.toggle()
        Keys.onReturnPressed: root.momentAsked()
        Keys.onEnterPressed: root.momentAsked()
        Keys.onSpacePressed: root.toggle()

        Item { // follows the rounded corners
            width: 3
            height: parent.height
            clip: true
            Rectangle {
                width: 2 * radius
                height: parent.height
                radius: card.radius
                color: Theme.violet
            }
        }
        FocusRing { shown: card.activeFocus; corner: parent.radius }
        TapHandler { onTapped: root.toggle() }
        Column {
            id: said
            x: 13
            y: 10
            width: parent.width - 23
            spacing: 3
            SelectableText {
                width: parent.width
                visible: root.wide && root.before.length > 0
                type: Theme.quotation
                color: Theme.text3
                text: root.before
                TapHandler { onTapped: root.toggle() }
            }
            SelectableText {
                id: middle
                width: parent.width
                type: Theme.quotation
                text: root.shown[0] ?? ""
                Accessible.ignored: true // the name of the whole
                TapHandler { onTapped: root.toggle() } // the text takes presses before the card does
            }
            SelectableText {
                width: parent.width
                visible: root.wide && root.after.length > 0
                type: Theme.quotation
                color: Theme.text3
                text: root.after
                TapHandler { onTapped: root.toggle() }
            }
        }
    }
}
