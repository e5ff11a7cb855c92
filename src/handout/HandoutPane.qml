pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Handout
import Murmeli.Localisation
import Murmeli.Ui

// What of a meeting goes out of the window, how it will look, and the ways out.
Item {
    id: root

    required property HandoutModel handout
    required property string meetingLine

    signal closed()

    function focusFirst(): void {
        header.focusFirst();
    }
    function handOut(way: int, button: Item): void {
        asked.asker = button;
        root.handout.handOut(way, root.Window.window);
    }

    Keys.onEscapePressed: root.handout.asking ? root.handout.answer(false, null) : root.closed()

    PaneHeader {
        id: header
        width: parent.width
        title: L.t("desk.title")
        line: root.meetingLine
        closeHelp: L.t("common.close")
        onClosed: root.closed()
    }
    Scroller {
        id: choices
        anchors { left: parent.left; top: header.bottom; bottom: parent.bottom }
        width: Math.min(Theme.grown(300), parent.width * 0.45)

        Column {
            x: Theme.padMain
            width: choices.width - x - 20
            topPadding: 16
            bottomPadding: 16

            Label {
                bottomPadding: 6
                type: Theme.overline
                color: Theme.text3
                font.capitalization: Font.AllUppercase
                text: L.t("desk.what")
                Accessible.role: Accessible.Heading
            }
            Repeater {
                model: root.handout.rows.length // the rows themselves are others with every choice
                CheckRow {
                    required property int index
                    readonly property handoutRow row: root.handout.rows[index]

                    width: parent.width
                    leftPadding: 0
                    rightPadding: 0
                    topPadding: 6
                    bottomPadding: 6
                    text: row.title
                    amount: row.amount
                    on: row.chosen
                    onChosen: on => root.handout.choose(row.part, on)
                }
            }
            Label {
                topPadding: 16
                bottomPadding: 6
                type: Theme.overline
                color: Theme.text3
                font.capitalization: Font.AllUppercase
                text: L.t("desk.how")
                Accessible.role: Accessible.Heading
            }
            component Hiding: Item {
                id: hiding

                property string title
                property string hint
                property bool on

                signal chosen(bool on)

                width: parent.width
                height: Math.max(texts.height, toggle.height) + 12
                Column {
                    id: texts
                    anchors { left: parent.left; right: toggle.left; rightMargin: Theme.padPanel; verticalCenter: parent.verticalCenter }
                    Label {
                        width: parent.width
                        type: Theme.label
                        wrapMode: Text.Wrap
                        text: hiding.title
                        Accessible.ignored: true
                    }
                    Label {
                        width: parent.width
                        visible: text.length > 0
                        type: Theme.caption
                        color: Theme.text3
                        elide: Text.ElideRight
                        text: hiding.hint
                        Accessible.ignored: true
                    }
                }
                Toggle {
                    id: toggle
                    anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                    name: hiding.title
                    description: hiding.hint
                    on: hiding.on
                    onChosen: on => hiding.chosen(on)
                }
            }
            Hiding {
                title: L.t("desk.hide_names")
                hint: root.handout.example
                on: root.handout.hideNames
                onChosen: on => root.handout.hideNames = on
            }
            Hiding {
                title: L.t("desk.hide_numbers")
                on: root.handout.hideNumbers
                onChosen: on => root.handout.hideNumbers = on
            }
        }
    }
    Rectangle {
        anchors { left: choices.right; right: parent.right; top: header.bottom; bottom: foot.top }
        color: Theme.bgSide

        ListView {
            id: list

            readonly property real paperWidth: Math.min(width - 2 * 20, 620)

            anchors.fill: parent
            clip: true
            topMargin: 20
            bottomMargin: 20
            spacing: 20
            boundsBehavior: Flickable.StopAtBounds
            keyNavigationEnabled: false
            activeFocusOnTab: true
            model: root.handout.pages
            Accessible.role: Accessible.List
            Accessible.name: L.t("desk.pages")
            ScrollBar.vertical: ScrollThumb { }
            Keys.onUpPressed: contentY = Math.max(originY - topMargin, contentY - 40)
            Keys.onDownPressed: contentY = Math.max(originY - topMargin, Math.min(contentY + 40, originY + contentHeight + bottomMargin - height))
            Keys.onPressed: event => event.accepted = ScrollKeys.take(list, event)
            delegate: Item {
                id: sheet

                required property int index

                width: ListView.view.width
                height: paper.height
                Accessible.role: Accessible.ListItem
                Accessible.name: L.t("desk.page", index + 1) + ". " + paper.text

                Rectangle {
                    anchors.fill: paper
                    anchors.margins: -Theme.hair
                    color: Theme.line
                }
                PagePicture {
                    id: paper
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: (sheet.ListView.view as ListView)?.width > 0 ? list.paperWidth : 0
                    height: width * 297 / 210
                    handout: root.handout
                    page: sheet.index
                }
            }
            FocusRing { shown: list.activeFocus; corner: Theme.rSmall; gap: -Theme.focusWidth * 2 }
        }
    }
    Rectangle {
        anchors { left: choices.right; top: header.bottom; bottom: parent.bottom }
        width: Theme.hair
        color: Theme.line
    }
    Item {
        id: foot
        anchors { left: choices.right; right: parent.right; bottom: parent.bottom }
        height: ways.height + (note.visible ? note.implicitHeight + 10 : 0) + 8 + 16

        Rectangle {
            width: parent.width
            height: Theme.hair
            color: Theme.line
        }
        Label {
            id: note
            readonly property bool told: !root.handout.message.empty
            x: 20
            y: 10
            width: parent.width - 2 * x
            visible: text.length > 0
            type: Theme.caption
            color: root.handout.failed ? Theme.inkRed : root.handout.asking ? Theme.text1 : Theme.text3
            wrapMode: Text.Wrap
            text: root.handout.asking ? L.t("desk.ask") : told ? L.say(root.handout.message)
                : root.handout.hidden >= 0 ? L.t("desk.hidden", root.handout.hidden) : ""
            Accessible.role: root.handout.failed || root.handout.asking ? Accessible.AlertMessage : Accessible.StatusBar
        }
        Item {
            id: ways
            anchors { right: parent.right; rightMargin: 20; bottom: parent.bottom; bottomMargin: 16 }
            width: parent.width - 40
            height: asked.visible ? asked.height : all.height
            Row {
                id: asked
                anchors.right: parent.right
                visible: root.handout.asking
                spacing: Theme.gapRow

                property Item asker: null

                onVisibleChanged: if (visible) no.forceActiveFocus(Qt.OtherFocusReason)
                PillButton {
                    id: no
                    buttonHeight: Theme.buttonHeight
                    text: L.t("desk.ask.no")
                    onClicked: root.handout.answer(false, null)
                }
                PillButton {
                    buttonHeight: Theme.buttonHeight
                    kind: PillButton.Primary
                    text: L.t("desk.ask.yes")
                    onClicked: root.handout.answer(true, root.Window.window)
                }
            }
            Flow {
                id: all
                anchors.right: parent.right
                width: Math.min(parent.width, toClipboard.width + toMarkdown.width + toMail.width + toPdf.width + 3 * spacing)
                visible: !root.handout.asking
                spacing: Theme.gapRow
                onVisibleChanged: if (visible) asked.asker?.forceActiveFocus(Qt.OtherFocusReason)
                PillButton {
                    id: toClipboard
                    buttonHeight: Theme.buttonHeight
                    enabled: root.handout.pages > 0
                    symbol: "doc.on.doc"
                    text: L.t("desk.copy")
                    onClicked: root.handOut(HandoutModel.Clipboard, toClipboard)
                }
                PillButton {
                    id: toMarkdown
                    buttonHeight: Theme.buttonHeight
                    enabled: root.handout.pages > 0
                    text: L.t("desk.markdown")
                    onClicked: root.handOut(HandoutModel.Markdown, toMarkdown)
                }
                PillButton {
                    id: toMail
                    buttonHeight: Theme.buttonHeight
                    enabled: root.handout.pages > 0
                    symbol: "envelope"
                    text: L.t("desk.mail")
                    onClicked: root.handOut(HandoutModel.Mail, toMail)
                }
                PillButton {
                    id: toPdf
                    buttonHeight: Theme.buttonHeight
                    kind: PillButton.Primary
                    enabled: root.handout.pages > 0
                    symbol: "square.and.arrow.down"
                    text: L.t("desk.pdf")
                    onClicked: root.handOut(HandoutModel.Pdf, toPdf)
                }
            }
        }
    }
}
