import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Murmeli.Ui

// The capsule button in its three kinds.
Button {
    id: root

    enum Kind { Secondary, Tinted, Primary }

    property int kind: PillButton.Secondary
    property string symbol
    property real symbolSize: Theme.symbolText
    property string help
    property string spokenName: text // where the text alone does not say of what
    property bool busy: false
    property bool strong: primary
    property int buttonHeight: Theme.buttonSmall
    readonly property bool primary: kind === PillButton.Primary
    readonly property color ink: primary ? Theme.white
        : kind === PillButton.Tinted ? Theme.inkViolet
        : pressed ? Theme.text2 : Theme.text1

    implicitHeight: buttonHeight
    spacing: Theme.gapIcon
    leftPadding: (buttonHeight >= Theme.buttonLarge ? 18 : 10) - spacing // the stretching ends have a gap each
    rightPadding: leftPadding
    topPadding: 0
    bottomPadding: 0
    opacity: enabled ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    focusPolicy: Qt.TabFocus

    Accessible.role: Accessible.Button
    Accessible.name: spokenName
    Accessible.description: help
    Accessible.onPressAction: if (root.enabled) root.clicked()
    Keys.onReturnPressed: if (root.enabled) root.clicked()
    Keys.onEnterPressed: if (root.enabled) root.clicked()

    background: Rectangle {
        radius: height / 2
        color: {
            if (root.kind === PillButton.Tinted) {
                return root.pressed ? Theme.tintPressed(Theme.violet)
                    : root.hovered ? Theme.tintHover(Theme.violet) : Theme.tint(Theme.violet);
            }
            return root.pressed ? Theme.press : root.hovered ? Theme.fillHover : Theme.fill;
        }

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            visible: root.primary
            gradient: PrimaryGradient { hovered: root.hovered; pressed: root.pressed }
        }
        FocusRing { shown: root.visualFocus; corner: parent.radius }
    }
    contentItem: RowLayout {
        spacing: root.spacing
        Item { Layout.fillWidth: true }
        Spinner {
            visible: root.busy
            ink: root.ink
        }
        Symbol {
            Layout.preferredWidth: root.symbolSize
            Layout.preferredHeight: root.symbolSize
            visible: root.symbol.length > 0 && !root.busy
            name: root.symbol
            size: root.symbolSize
            ink: root.ink
        }
        Label {
            type: root.buttonHeight >= Theme.buttonLarge ? (root.strong ? Theme.buttonLargeStrong : Theme.buttonLargeType)
                : root.buttonHeight <= Theme.buttonSmall ? (root.strong ? Theme.buttonSmallStrong : Theme.buttonSmallType)
                : root.strong ? Theme.buttonStrong : Theme.button
            text: root.text
            color: root.ink
            Accessible.ignored: true
        }
        Item { Layout.fillWidth: true }
    }
}
