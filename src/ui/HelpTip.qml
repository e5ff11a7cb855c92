import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// What a symbol means, for those who rest the pointer on it. Stays inside its window.
ToolTip {
    id: root

    property bool wanted: false // the pointer rests there; whoever scrolls by key does not ask for it

    visible: wanted && !Look.typing
    delay: Theme.helpDelay
    margins: Theme.shadowExtent + Theme.gapRow // the shadow around a panel is part of its window
    horizontalPadding: Theme.gapGroup
    verticalPadding: Theme.gapIcon
    contentWidth: Math.min(measure.advanceWidth + 2, Theme.helpWidth)

    TextMetrics {
        id: measure
        font.family: Theme.family
        font.pointSize: Theme.caption.size * Look.pointsPerPixel
        text: root.text
    }
    contentItem: Label {
        type: Theme.caption
        wrapMode: Text.Wrap
        text: root.text
        Accessible.ignored: true // it is the name of the control already
    }
    background: Rectangle {
        radius: Theme.rSmall
        color: Theme.bgPop
        border.width: Theme.hair
        border.color: Theme.popEdge
    }
}
