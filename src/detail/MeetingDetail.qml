import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Detail
import Murmeli.Localisation
import Murmeli.Protocol
import Murmeli.Report
import Murmeli.Ui

// A meeting's protocol, and the tools to correct it and to pass it on.
Item {
    id: root

    required property MeetingDetailModel detail
    property bool analysing: false

    signal closed()

    function focusFirst(): void {
        header.focusFirst();
    }

    function analyse(): void {
        root.detail.openReport();
        root.analysing = true;
    }

    // One step: from the analysis to the protocol, from there to the meetings.
    function back(): void {
        if (!root.analysing) {
            root.closed();
            return;
        }
        root.analysing = false;
        header.focusAnalysis();
    }

    Keys.onEscapePressed: root.back()

    Connections {
        target: root.detail
        function onChanged() {
            if (list.begun || !root.detail.loaded) return;
            list.begun = true;
            list.positionViewAtBeginning();
        }
        function onCorrected(row: int) {
            if (row >= 0) list.positionViewAtIndex(row, ListView.Contain);
        }
    }
    Item {
        width: parent.width
        height: parent.height
        enabled: !root.analysing
        visible: enabled || opacity > 0
        opacity: enabled ? 1 : 0
        x: enabled ? 0 : -Theme.slide
        Behavior on opacity { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        Behavior on x { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }

        DetailHeader {
            id: header
            x: Theme.padMain
            width: parent.width - 2 * Theme.padMain
            detail: root.detail
            onClosed: root.closed()
            onAnalysisAsked: root.analyse()
        }
        ListView {
            id: list

            property bool begun: false // the protocol has come, and is shown from its beginning

            anchors { left: parent.left; right: parent.right; top: header.bottom; bottom: remark.top }
            clip: true
            reuseItems: false
            bottomMargin: 36
            boundsBehavior: Flickable.StopAtBounds
            currentIndex: -1 // the keyboard scrolls the whole, no item has it
            activeFocusOnTab: true
            model: root.detail.sections
            Accessible.role: Accessible.List
            Accessible.name: root.detail.title
            ScrollBar.vertical: ScrollThumb { }
            Keys.onUpPressed: flick(0, 700)
            Keys.onDownPressed: flick(0, -700)
            // Bound as a whole, the file could not have its loader below.
            // qmllint disable unqualified
            header: Label {
                x: Theme.padMain
                width: Math.min(640, list.width - 2 * Theme.padMain)
                visible: root.detail.tldr.length > 0
                bottomPadding: visible ? 20 : 0
                type: Theme.body
                color: Theme.text2
                wrapMode: Text.Wrap
                text: root.detail.tldr
            }
            delegate: Item {
                id: place

                required property string text
                required property string titleKey
                required property bool last
                required property string before
                required property bool corrected

                width: list.width
                height: row.implicitHeight
                ProtocolItemRow {
                    id: row
                    x: Theme.padMain
                    width: parent.width - 2 * Theme.padMain
                    text: place.text
                    titleKey: place.titleKey
                    last: place.last
                    before: place.before
                    corrected: place.corrected
                }
            }
            // qmllint enable unqualified
            FocusRing { shown: list.activeFocus; corner: Theme.rSmall; gap: -Theme.focusWidth * 2 }
        }
        Rectangle { // the protocol fades out under the remark box
            anchors { left: parent.left; right: parent.right; rightMargin: Theme.gapGroup; bottom: remark.top }
            height: 36
            gradient: Gradient {
                GradientStop { position: 0; color: Theme.alpha(Theme.bgWindow, 0) }
                GradientStop { position: 1; color: Theme.bgWindow }
            }
        }
        RemarkBox {
            id: remark
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            editor: root.detail.editor
            glossary: root.detail.glossary
            draft: root.detail.draft
            onWritten: draft => root.detail.draft = draft
            onSent: root.detail.sendRemark()
        }
    }
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    Loader {
        id: analysis
        property real presence: root.analysing ? 1 : 0
        width: parent.width
        height: parent.height
        x: (1 - presence) * Theme.slide
        opacity: presence
        active: presence > 0
        enabled: root.analysing
        Behavior on presence { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        onLoaded: (item as ReportPane).focusFirst()
        sourceComponent: ReportPane {
            loader: root.detail.report
            meetingLine: root.detail.title + L.t("common.dot") + root.detail.dateLine
            onBuildAsked: root.detail.buildReport()
            onClosed: root.back()
        }
    }
    // qmllint enable unqualified
}
