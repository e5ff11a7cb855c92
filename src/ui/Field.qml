import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// One line to write in.
TextField {
    id: root

    required property string name // of what is asked for

    implicitHeight: Theme.grown(32)
    leftPadding: 11
    rightPadding: 11
    topPadding: 0
    bottomPadding: 0
    verticalAlignment: TextInput.AlignVCenter
    opacity: enabled ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    selectByMouse: true
    color: Theme.text1
    placeholderTextColor: Theme.text3
    selectionColor: Theme.alpha(Theme.violet, 0.35)
    selectedTextColor: Theme.text1
    font.family: Theme.family
    font.pointSize: Theme.lead.size * Look.pointsPerPixel
    font.hintingPreference: Font.PreferNoHinting

    persistentSelection: true // while its menu is open
    Keys.onMenuPressed: EditMenus.open(root, cursorRectangle.x, height)
    Accessible.role: Accessible.EditableText
    Accessible.name: name
    Accessible.editable: true

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: point => EditMenus.open(root, point.position.x, point.position.y)
    }
    background: Rectangle {
        radius: Theme.rField
        color: Theme.bgField
        border.width: Theme.hair
        border.color: root.activeFocus ? Theme.violet : root.hovered ? Theme.lineStrong : Theme.lineField

        Rectangle {
            anchors.fill: parent
            anchors.margins: -3
            z: -1
            radius: Theme.rField + 3
            color: Theme.alpha(Theme.violet, 0.26)
            visible: root.activeFocus
        }
    }
}
