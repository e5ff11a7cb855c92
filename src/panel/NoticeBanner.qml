import QtQuick
import Murmeli.Localisation
import Murmeli.Notices
import Murmeli.Panel
import Murmeli.Ui

// What the board says of one kind; made when it first says something.
Loader {
    id: root

    required property NoticeBoard board
    required property int kind
    readonly property notice now: board.notices[kind]
    property notice said // outlives its end for as long as the banner fades

    function take(): void {
        if (now.shown) said = now;
    }

    active: now.shown || (item?.visible ?? false)
    visible: active
    onNowChanged: take()
    Component.onCompleted: take()

    // Loaders take no bound components yet.
    // qmllint disable unqualified
    sourceComponent: Banner {
        readonly property bool failed: root.said.tone === NoticeTone.Failure
        readonly property bool good: root.said.tone === NoticeTone.Good

        shown: root.now.shown
        accent: failed ? Theme.red : good ? Theme.green : Theme.pink
        ink: failed ? Theme.inkRed : good ? Theme.inkGreen : Theme.inkPink
        symbol: root.said.symbol
        title: root.said.title
        body: root.said.body
        actions: root.said.actions
        closable: root.said.closable
        closeHelp: L.t("panel.auth.dismiss")
        onActed: action => root.board.act(root.kind, action)
        onDismissed: root.board.dismiss(root.kind)
    }
    // qmllint enable unqualified
}
