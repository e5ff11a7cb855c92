import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Report
import Murmeli.Ui

// A moment of the meeting; pressed, it shows what was said then.
Button {
    id: root

    required property string stamp
    required property ReportLoader loader
    property bool travels: false // to the transcript, else what was said unfolds here
    readonly property bool open: visible && !travels && loader.openStamp === stamp
    readonly property bool stop: visible // of the keyboard
    readonly property bool nowhere: loader.isOutside(stamp, loader.checks) // in the transcript

    implicitHeight: Theme.grown(20)
    leftPadding: 8
    rightPadding: 8
    topPadding: 0
    bottomPadding: 0
    text: stamp.length > 40 ? stamp.substring(0, 40) + "…" : stamp
    opacity: nowhere ? Theme.disabledOpacity : 1
    hoverEnabled: true
    onClicked: travels ? loader.goTo(stamp) : loader.toggle(stamp)
    focusPolicy: Qt.NoFocus // the pane leads the keyboard from one to the next
    containmentMask: QtObject { // larger than it looks
        function contains(point: point): bool {
            return point.x >= 0 && point.x < root.width && point.y >= -4 && point.y < root.height + 4;
        }
    }
    Accessible.focusable: true
    Accessible.role: Accessible.Button
    Accessible.name: L.t("report.stamp.name", loader.spoken(stamp, L.language))
    Accessible.description: nowhere ? L.t("quote.no_such_moment") : ""
    Accessible.checkable: !travels
    Accessible.checked: open
    Accessible.onPressAction: root.clicked()
    Accessible.onToggleAction: root.clicked()
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Rectangle {
        radius: height / 2
        color: root.open || root.pressed ? Theme.fillViolet : root.hovered ? Theme.tintHover(Theme.violet) : Theme.tint(Theme.violet)
        Behavior on color { ColorAnimation { duration: Theme.quick } }
        FocusRing { shown: root.visualFocus; corner: parent.radius }
    }
    contentItem: Label {
        verticalAlignment: Text.AlignVCenter
        type: Theme.chip
        color: root.open || root.pressed ? Theme.white : Theme.inkViolet
        text: root.text
        Accessible.ignored: true
    }
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    Loader { // a pop-up is large, and most are never seen
        anchors.fill: parent
        active: root.hovered
        sourceComponent: HelpTip {
            wanted: root.hovered && !root.pressed
            text: root.nowhere ? L.t("quote.no_such_moment") : L.t("report.stamp.help")
        }
    }
    // qmllint enable unqualified
}
