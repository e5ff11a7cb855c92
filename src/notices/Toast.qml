import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Murmeli.Notices
import Murmeli.Ui

// A card that says in passing that a recording has started or ended. Takes no focus and no clicks.
Window {
    id: root

    required property rect available // of the screen
    required property int others // that are on screen already
    required property string cardTitle
    required property string message
    required property bool starting
    required property string symbol
    property bool shown: false
    property real strength: shown ? 1 : 0 // of a property of our own: a hidden window's opacity tells of no change

    flags: Qt.ToolTip | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint | Qt.WindowTransparentForInput
        | Qt.WindowDoesNotAcceptFocus | Qt.NoDropShadowWindowHint
    color: Theme.clear
    title: cardTitle
    x: available.x + available.width - Theme.toastWidth - Theme.toastMargin - Theme.shadowExtent
    y: available.y + Theme.toastGap + (Theme.toastHeight + Theme.toastGap) * others - margin
    width: Theme.toastWidth + 2 * Theme.shadowExtent
    height: Theme.toastHeight + margin + Theme.shadowExtent
    opacity: strength
    visible: strength > 0

    readonly property int margin: Math.min(Theme.shadowExtent, Theme.toastGap)

    Behavior on strength { NumberAnimation { duration: Theme.base; easing.type: Easing.OutCubic } }

    Shadow {
        visible: Theme.compositing
        x: body.x - extent
        y: body.y - extent
        width: body.width + 2 * extent
        height: body.height + 2 * extent
        extent: Theme.shadowExtent
        radius: Theme.rToast
        offset: Theme.popShadowOffset / 2
        blur: Theme.popShadowBlur / 2
        color: Theme.popShadow
    }
    Rectangle {
        id: body
        x: Theme.shadowExtent
        y: root.margin
        width: Theme.toastWidth
        height: Theme.toastHeight
        radius: Theme.compositing ? Theme.rToast : 0
        color: Theme.bgPop
        border.width: Theme.hair
        border.color: Theme.popEdge

        Accessible.role: Accessible.AlertMessage
        Accessible.name: root.cardTitle + ". " + root.message

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 14
            anchors.rightMargin: 16
            spacing: 12
            Rectangle {
                Layout.preferredWidth: Theme.toastDisc
                Layout.preferredHeight: Theme.toastDisc
                radius: Theme.toastDisc / 2
                gradient: Gradient {
                    GradientStop { position: 0; color: root.starting ? Theme.toastStartFrom : Theme.toastEndFrom }
                    GradientStop { position: 1; color: root.starting ? Theme.toastStartTo : Theme.toastEndTo }
                }
                Symbol {
                    anchors.centerIn: parent
                    size: Theme.symbolBanner
                    name: root.symbol
                    ink: Theme.white
                }
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0
                Label {
                    Layout.fillWidth: true
                    type: Theme.toastTitle
                    text: root.cardTitle
                    Accessible.ignored: true
                }
                Label {
                    Layout.fillWidth: true
                    type: Theme.sub
                    color: Theme.text2
                    wrapMode: Text.Wrap
                    maximumLineCount: 2
                    elide: Text.ElideRight
                    text: root.message
                    Accessible.ignored: true
                }
            }
        }
    }
}
