import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Murmeli.Notices
import Murmeli.Ui

// A card that says something in passing. Takes no focus, and clicks only on its buttons where it has some.
Window {
    id: root

    required property rect available // of the screen
    required property real above // taken by the cards that are on screen already
    required property string cardTitle
    required property string message
    required property int tone // a NoticeTone
    required property string symbol
    required property list<noticeAction> actions
    readonly property bool pressable: actions.length > 0
    readonly property bool held: over.hovered
    readonly property real extent: body.height + Theme.toastGap
    property bool shown: false
    readonly property var disc: [
        [Theme.toastEndFrom, Theme.toastEndTo], [Theme.toastStartFrom, Theme.toastStartTo], [Theme.toastWarnFrom, Theme.toastWarnTo],
        [Theme.toastFailFrom, Theme.toastFailTo], [Theme.toastGoodFrom, Theme.toastGoodTo]
    ][tone]

    signal acted(int action)

    property real strength: shown ? 1 : 0 // of a property of our own: a hidden window's opacity tells of no change

    flags: Qt.ToolTip | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
        | (pressable ? 0 : Qt.WindowTransparentForInput) | Qt.WindowDoesNotAcceptFocus | Qt.NoDropShadowWindowHint
    color: Theme.clear
    title: cardTitle
    x: available.x + available.width - Theme.toastWidth - Theme.toastMargin - Theme.shadowExtent
    y: available.y + Theme.toastGap + above - margin
    width: Theme.toastWidth + 2 * Theme.shadowExtent
    height: body.height + margin + Theme.shadowExtent
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
        height: root.pressable ? Theme.cardHeight : Theme.toastHeight
        radius: Theme.compositing ? Theme.rToast : 0
        color: Theme.bgPop
        border.width: Theme.hair
        border.color: Theme.popEdge

        Accessible.role: Accessible.AlertMessage
        Accessible.name: root.cardTitle + ". " + root.message

        HoverHandler { id: over }
        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 14
            anchors.rightMargin: 16
            anchors.topMargin: root.pressable ? 15 : 0
            spacing: 12
            Rectangle {
                Layout.alignment: root.pressable ? Qt.AlignTop : Qt.AlignVCenter
                Layout.preferredWidth: Theme.toastDisc
                Layout.preferredHeight: Theme.toastDisc
                radius: Theme.toastDisc / 2
                gradient: Gradient {
                    GradientStop { position: 0; color: root.disc[0] }
                    GradientStop { position: 1; color: root.disc[1] }
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
                Layout.alignment: root.pressable ? Qt.AlignTop : Qt.AlignVCenter
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
                    maximumLineCount: root.pressable ? 1 : 2
                    elide: Text.ElideRight
                    text: root.message
                    Accessible.ignored: true
                }
                NoticeButtons {
                    Layout.topMargin: 9
                    visible: root.pressable
                    actions: root.actions
                    onActed: action => root.acted(action)
                }
            }
        }
    }
}
