import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Murmeli.Ui

// A check box as wide as its row, with a hint below its title. It shows what `on` says; a press only asks for a
// change.
CheckBox {
    id: root

    required property bool on
    property string hint
    property string amount // of what it stands for

    signal chosen(bool on)

    leftPadding: Theme.padPanel
    rightPadding: Theme.padPanel
    topPadding: 11
    bottomPadding: 11
    opacity: enabled ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    checked: on
    nextCheckState: () => checkState
    onClicked: chosen(!on)
    indicator: null

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.description: hint + amount
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: if (root.enabled) root.clicked()
    Accessible.onToggleAction: if (root.enabled) root.clicked()
    Keys.onReturnPressed: if (root.enabled) root.clicked()
    Keys.onEnterPressed: if (root.enabled) root.clicked()

    background: Rectangle {
        radius: Theme.rCard
        color: root.pressed ? Theme.press : root.hovered ? Theme.hover : Theme.clear
        FocusRing { shown: root.visualFocus; corner: Theme.rCard; gap: -Theme.focusWidth - Theme.focusGap }
    }
    contentItem: RowLayout {
        spacing: 10
        Symbol {
            Layout.alignment: Qt.AlignTop
            Layout.preferredWidth: Theme.checkGlyph
            Layout.preferredHeight: Theme.checkGlyph
            size: Theme.checkGlyph
            name: root.checked ? "checkmark.circle.fill" : "circle"
            ink: root.checked ? Theme.inkViolet : Theme.text3
        }
        ColumnLayout {
            spacing: 2
            Label {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                text: root.text
                Accessible.ignored: true
            }
            Label {
                Layout.fillWidth: true
                type: Theme.caption
                wrapMode: Text.Wrap
                color: Theme.text3
                visible: text.length > 0
                text: root.hint
                Accessible.ignored: true
            }
        }
        Label {
            type: Theme.caption
            color: Theme.text3
            visible: text.length > 0
            text: root.amount
            Accessible.ignored: true
        }
    }
}
