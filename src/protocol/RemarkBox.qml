import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Account
import Murmeli.Glossary
import Murmeli.Localisation
import Murmeli.Protocol
import Murmeli.Ui

// Corrects the protocol by a sentence in plain words, and says what has come of it.
Item {
    id: root

    required property AuthManager account
    required property ProtocolEditor editor
    required property GlossaryStore glossary
    required property string draft
    required property ProtocolChanges changes // what has become of an undo stands here too
    readonly property bool working: editor.outcome === ProtocolEditor.Working
    readonly property bool failed: editor.outcome === ProtocolEditor.Failed
    property ViewMemory memory: null
    property bool locked: false // nothing of the meeting is sent
    property bool teaching: memory?.kept("teaching", false) ?? false
    property string learned

    signal written(string draft)
    signal sent()

    function send(): void {
        if (root.locked) return;
        root.learned = "";
        root.sent();
    }

    implicitHeight: column.height + 30
    onTeachingChanged: memory?.keep("teaching", teaching)
    onDraftChanged: if (field.text !== draft) field.text = draft

    Rectangle {
        width: parent.width
        height: Theme.hair
        color: Theme.line
    }
    Column {
        id: column
        x: Theme.padMain
        y: Theme.padPanel
        width: parent.width - 2 * Theme.padMain

        Item {
            width: parent.width
            height: (teach.implicitHeight + Theme.gapGroup) * Theme.unfolded(unfolded)
            visible: unfolded > 0
            clip: unfolded < 1
            property real unfolded: root.teaching ? 1 : 0
            Behavior on unfolded { NumberAnimation { duration: Theme.base; easing.type: Easing.OutCubic } }
            TeachBox {
                id: teach
                width: parent.width
                glossary: root.glossary
                memory: root.memory
                onLearned: rule => {
                    if (!root.working) root.editor.reset(); // the line tells what was done last
                    root.learned = rule;
                }
                onClosed: {
                    root.teaching = false;
                    teachLink.forceActiveFocus(Qt.OtherFocusReason);
                }
            }
        }
        Rectangle {
            width: parent.width
            height: Math.min(Math.max(least, field.implicitHeight, hint.visible ? hint.height + 22 : 0), least + 3 * Theme.body.line)

            readonly property int least: Theme.grown(44)

            radius: Theme.rTile
            color: Theme.bgCard
            border.width: Theme.hair
            border.color: field.activeFocus ? Theme.violet : Theme.lineField

            Rectangle {
                anchors.fill: parent
                anchors.margins: -3
                z: -1
                radius: parent.radius + 3
                color: Theme.alpha(Theme.violet, 0.26)
                visible: field.activeFocus
            }
            Label { // the field's own would be cut instead of wrapped
                id: hint
                anchors { left: parent.left; leftMargin: 16; right: parent.right; rightMargin: 46 }
                y: 11
                visible: field.length === 0 && field.preeditText.length === 0
                type: Theme.body
                color: Theme.text3
                wrapMode: Text.Wrap
                text: L.t("editor.placeholder")
                Accessible.ignored: true
            }
            Flickable {
                anchors.fill: parent
                anchors.rightMargin: 46
                boundsBehavior: Flickable.StopAtBounds
                clip: true
                ScrollBar.vertical: ScrollThumb { }
                TextArea.flickable: TextArea {
                    id: field
                    leftPadding: 16
                    topPadding: 11
                    bottomPadding: 11
                    wrapMode: TextArea.Wrap
                    textFormat: TextEdit.PlainText
                    readOnly: root.working
                    selectByMouse: true
                    color: Theme.text1
                    selectionColor: Theme.alpha(Theme.violet, 0.35)
                    selectedTextColor: Theme.text1
                    font.family: Theme.family
                    font.pointSize: Theme.body.size * Look.pointsPerPixel
                    font.hintingPreference: Font.PreferNoHinting
                    background: null
                    persistentSelection: true // while its menu is open
                    Keys.onMenuPressed: EditMenus.open(field, cursorRectangle.x, cursorRectangle.y + cursorRectangle.height)
                    TapHandler {
                        acceptedButtons: Qt.RightButton
                        onTapped: point => EditMenus.open(field, point.position.x, point.position.y)
                    }
                    KeyNavigation.priority: KeyNavigation.BeforeItem
                    KeyNavigation.tab: button.visible && button.ready ? button : teachLink
                    Accessible.role: Accessible.EditableText
                    Accessible.name: L.t("detail.remark")
                    Accessible.description: L.t("editor.placeholder")
                    Component.onCompleted: text = root.draft
                    onTextChanged: {
                        const typed = text !== root.draft; // else it has just come back with its meeting
                        root.written(text);
                        if (!typed || text.length === 0 || root.working) return;
                        root.editor.reset();
                        root.changes.forgetMessage();
                    }
                    Keys.onReturnPressed: event => {
                        if (event.modifiers & Qt.ShiftModifier) event.accepted = false;
                        else root.send();
                    }
                    Keys.onEnterPressed: root.send()
                }
            }
            Spinner {
                anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
                visible: root.working
                size: Theme.symbolText
            }
            Button {
                id: button
                anchors { right: parent.right; rightMargin: 6; bottom: parent.bottom; bottomMargin: 6 }
                width: Theme.grown(32)
                height: Theme.grown(32)
                visible: !root.working
                focusPolicy: Qt.TabFocus
                hoverEnabled: true
                readonly property bool ready: field.text.trim().length > 0 && !root.locked
                enabled: ready
                Accessible.role: Accessible.Button
                Accessible.name: L.t("detail.send")
                Accessible.description: root.locked ? L.t("lock.closed") : ""
                Accessible.onPressAction: if (ready) root.send()
                Keys.onReturnPressed: root.send()
                onClicked: root.send()
                background: Rectangle {
                    radius: width / 2
                    color: Theme.fill
                    Rectangle {
                        anchors.fill: parent
                        radius: parent.radius
                        opacity: button.ready ? 1 : 0
                        gradient: PrimaryGradient { hovered: button.hovered }
                        Behavior on opacity { NumberAnimation { duration: Theme.quick } }
                    }
                    FocusRing { shown: button.visualFocus; corner: parent.radius }
                }
                contentItem: Item {
                    Symbol {
                        anchors.centerIn: parent
                        size: Theme.symbolText
                        name: "arrow.up"
                        ink: button.ready ? Theme.white : Theme.text4
                    }
                }
            }
        }
        Item {
            width: parent.width
            height: Math.max(teachLink.height, outcome.height) + 7

            Symbol {
                id: glyph
                y: outcome.y + 1
                visible: name.length > 0
                size: Theme.symbolText
                name: root.editor.symbol || (root.locked ? "lock" : root.learned.length > 0 ? "checkmark.circle.fill" : "")
                ink: root.editor.symbol.length > 0 ? Theme.accentInks[root.editor.accent] : root.locked ? Theme.text2 : Theme.inkGreen
                RotationAnimation on rotation {
                    running: root.working && root.Window.visibility !== Window.Hidden && Theme.motion
                    loops: Animation.Infinite
                    from: 0
                    to: 180
                    duration: Theme.spin
                    onStopped: glyph.rotation = 0
                }
            }
            Label {
                id: outcome
                y: 11
                x: glyph.visible ? 23 : 0
                width: Math.min(implicitWidth, parent.width - x - teachLink.width - Theme.padPanel - (signIn.visible ? signIn.width + Theme.gapRow : 0))
                type: Theme.sub
                wrapMode: Text.Wrap
                maximumLineCount: 4
                elide: Text.ElideRight
                color: root.failed ? Theme.inkRed : glyph.visible ? Theme.text2 : Theme.text3
                text: root.editor.outcome !== ProtocolEditor.Idle ? L.say(root.editor.message)
                    : !root.changes.message.empty ? L.say(root.changes.message)
                    : root.locked ? L.t("lock.closed")
                    : root.learned.length === 0 ? L.t("editor.hint")
                    : root.account.isAuthed ? L.t("detail.learned", root.learned) : L.t("detail.learned.here", root.learned)
                Accessible.role: root.failed ? Accessible.AlertMessage : Accessible.StatusBar
            }
            SignInLink {
                id: signIn
                anchors { left: outcome.right; leftMargin: Theme.gapRow }
                y: 7
                visible: !account.isAuthed && (root.editor.needsSignIn || root.editor.outcome === ProtocolEditor.Idle && root.learned.length > 0)
                account: root.account
            }
            LinkButton {
                id: teachLink
                anchors.right: parent.right
                y: 7
                symbol: "graduationcap"
                text: root.teaching ? L.t("editor.teach.hide") : L.t("editor.teach")
                onClicked: {
                    root.teaching = !root.teaching;
                    if (root.teaching) teach.focusFirst();
                }
            }
        }
    }
}
