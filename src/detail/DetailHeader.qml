import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Murmeli.Detail
import Murmeli.Localisation
import Murmeli.Meetings
import Murmeli.Protocol
import Murmeli.Ui

// Which meeting this is, and what can be done with its protocol.
Column {
    id: root

    required property MeetingDetailModel detail
    readonly property bool building: detail.files.outcome === ProtocolFileMaker.Working

    signal closed()
    signal analysisAsked()

    function focusFirst(): void {
        back.forceActiveFocus(Qt.OtherFocusReason);
    }
    function focusTranscript(): void {
        transcript.forceActiveFocus(Qt.OtherFocusReason);
    }
    function focusSheet(sheet: int): void {
        const links = {[MeetingDetailModel.Sent]: sent, [MeetingDetailModel.HandOut]: handout};
        (links[sheet] ?? changes).forceActiveFocus(Qt.OtherFocusReason);
    }
    function focusAnalysis(): void {
        analysis.forceActiveFocus(Qt.OtherFocusReason);
    }

    topPadding: 10 + Theme.chromeInset

    Connections {
        target: root.detail
        // It may have taken minutes, and the user be elsewhere by now.
        function onBuilt(path: string) {
            const below = sharing.height + Theme.gapSmall;
            if (!sharing.visible || !root.Window.window.visible
                || root.detail.offer(path, root.Window.window, sharing.mapToItem(null, 0, below))) return;
            ways.path = path;
            ways.popup(sharing, 0, below);
        }
    }
    ContextMenu {
        id: ways

        property string path

        name: sharing.text

        Action {
            text: L.t("file.share.mail")
            onTriggered: root.detail.passOn(ways.path, MeetingDetailModel.Mail)
        }
        Action {
            text: L.t("file.share.open")
            onTriggered: root.detail.passOn(ways.path, MeetingDetailModel.Open)
        }
        Action {
            text: L.t("file.share.folder")
            onTriggered: root.detail.passOn(ways.path, MeetingDetailModel.Folder)
        }
        Action {
            text: L.t("file.share.copy")
            onTriggered: root.detail.passOn(ways.path, MeetingDetailModel.Copy)
        }
    }
    LinkButton {
        id: back
        x: -Theme.gapSmall - 2
        symbol: "chevron.left"
        ink: Theme.text2
        type: Theme.button
        text: L.t("tab.meetings")
        spokenName: L.t("detail.back")
        onClicked: root.closed()
    }
    Item {
        width: parent.width
        height: title.height + Theme.gapRow
        SelectableText {
            id: title
            y: Theme.gapRow
            width: Math.min(implicitWidth, parent.width - (pill.visible ? pill.width + Theme.padPanel : 0))
            type: Theme.display
            text: root.detail.title
            Accessible.role: Accessible.Heading
        }
        Pill {
            id: pill
            anchors { left: title.right; leftMargin: Theme.padPanel }
            y: title.y + (Theme.display.line - height) / 2
            visible: root.detail.edited
            symbol: "pencil"
            text: L.t("editor.badge")
            spokenName: L.t("detail.edited")
        }
    }
    Label {
        topPadding: 3
        type: Theme.lead
        color: Theme.text2
        text: root.detail.dateLine
    }
    HeardNote {
        width: parent.width
        topPadding: Theme.gapSmall
        key: root.detail.heard
    }
    Flow {
        width: parent.width
        topPadding: 16
        spacing: Theme.gapRow
        PillButton {
            id: analysis
            buttonHeight: Theme.buttonHeight
            kind: PillButton.Tinted
            symbol: "doc.text.magnifyingglass"
            text: L.t("report.open")
            onClicked: root.analysisAsked()
        }
        PillButton {
            id: saving
            buttonHeight: Theme.buttonHeight
            symbol: "square.and.arrow.down"
            enabled: !root.building
            text: L.t("file.save")
            onClicked: root.detail.save(root.Window.window)
        }
        PillButton {
            id: sharing
            buttonHeight: Theme.buttonHeight
            symbol: "square.and.arrow.up"
            enabled: !root.building
            text: L.t("file.share")
            onClicked: root.detail.share()
        }
        PillButton {
            visible: root.detail.hasProtocol
            buttonHeight: Theme.buttonHeight
            symbol: "folder"
            text: Qt.platform.os === "osx" ? L.t("detail.reveal") : L.t("detail.reveal.linux")
            onClicked: root.detail.reveal()
        }
        Label {
            height: Theme.buttonHeight
            verticalAlignment: Text.AlignVCenter
            visible: root.detail.loaded && !root.detail.hasProtocol
            type: Theme.sub
            color: Theme.text3
            text: L.t("detail.no_protocol")
        }
    }
    Flow {
        x: -Theme.gapSmall
        width: parent.width
        topPadding: 6
        LinkButton {
            id: transcript
            visible: root.detail.hasTranscript
            symbol: "text.bubble"
            text: L.t("detail.transcript")
            onClicked: root.detail.openTranscript("")
        }
        LinkButton {
            id: changes
            visible: root.detail.changes.total > 0 || root.detail.changes.unreadable
            symbol: "arrow.counterclockwise"
            text: L.t("ledger.open", root.detail.changes.total)
            onClicked: root.detail.openSheet(MeetingDetailModel.Changes)
        }
        LinkButton {
            id: sent
            symbol: root.detail.locked ? "lock" : "arrow.up"
            text: L.t("sent.open", root.detail.sent.total)
            onClicked: root.detail.openSheet(MeetingDetailModel.Sent)
        }
        LinkButton {
            id: handout
            symbol: "square.and.arrow.up"
            text: L.t("detail.desk")
            onClicked: root.detail.openSheet(MeetingDetailModel.HandOut)
        }
    }
    FileLine {
        width: parent.width
        files: root.detail.files
        onRebuildAsked: root.detail.shareAnew()
        onOtherWayAsked: root.detail.openSheet(MeetingDetailModel.HandOut)
    }
    Item {
        width: 1
        height: 16
    }
}
