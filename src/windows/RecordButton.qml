import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Localisation
import Murmeli.Service
import Murmeli.Ui
import Murmeli.Windows

// Starts and stops a recording. It shows at once what was asked for, and what the service says once it has said so.
Button {
    id: root

    required property AppState appState
    required property RecordControl record
    readonly property bool recording: record.waiting ? record.pending === RecordControl.Starting : appState.recording

    implicitHeight: Theme.grown(42)
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    text: recording ? L.t("record.stop") : L.t("record.start")
    scale: pressed ? 0.95 : hovered && !record.waiting ? 1.02 : 1
    onClicked: root.record.toggle()

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: root.clicked()
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    Behavior on scale {
        enabled: Theme.motion
        NumberAnimation { duration: Theme.spring; easing.type: Easing.OutBack; easing.overshoot: Theme.springOvershoot }
    }

    background: Item {
        Shadow {
            z: -1
            anchors.fill: parent
            anchors.margins: -extent
            extent: 30
            radius: Theme.rCard
            offset: 6
            blur: 18
            color: Theme.alpha(root.recording ? Theme.red : Theme.violet, 0.26)
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.rCard
            gradient: PrimaryGradient { hovered: root.hovered }
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.rCard
            opacity: root.recording ? 1 : 0
            gradient: Gradient {
                orientation: Gradient.Horizontal
                GradientStop { position: 0; color: Theme.recordingFrom }
                GradientStop { position: 1; color: Theme.recordingTo }
            }
            Behavior on opacity { NumberAnimation { duration: Theme.swap; easing.type: Easing.OutCubic } }
        }
        FocusRing { shown: root.visualFocus; corner: Theme.rCard }
    }
    contentItem: Item {
        Row {
            anchors.centerIn: parent
            spacing: Theme.gapIcon
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                size: 18
                name: "waveform"
                ink: Theme.white
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                type: Theme.buttonStrong
                color: Theme.white
                text: root.text
                Accessible.ignored: true
            }
        }
    }
}
