import QtQuick
import Murmeli.Localisation
import Murmeli.Permissions
import Murmeli.Setup
import Murmeli.Ui

// What can be done now.
Item {
    id: root

    required property SetupRunner runner
    required property PermissionsModel perms
    required property bool diskImage

    readonly property string startText: start.text

    signal done()

    readonly property bool failed: !diskImage && !runner.finished && runner.failed
    readonly property bool finished: !diskImage && runner.finished

    function focusFirst(): void {
        const at = Window.activeFocusItem;
        if (at instanceof PillButton && at.visualFocus && at.visible) return; // the user is at another button
        if (failed) retry.forceActiveFocus(Qt.OtherFocusReason);
        else if (finished) start.forceActiveFocus(Qt.OtherFocusReason);
    }

    implicitHeight: Theme.grown(64)
    onFailedChanged: if (failed) focusFirst()
    onFinishedChanged: if (finished) focusFirst()

    Rectangle {
        width: parent.width
        height: Theme.hair
        color: Theme.line
    }
    Label {
        anchors { left: parent.left; leftMargin: Theme.padWindow; right: parent.right; rightMargin: Theme.padWindow }
        anchors.verticalCenter: parent.verticalCenter
        visible: root.diskImage
        type: Theme.sub
        color: Theme.text3
        text: L.t("setup.footer.dmg")
    }
    Row {
        anchors { left: parent.left; leftMargin: Theme.padWindow; verticalCenter: parent.verticalCenter }
        visible: !root.diskImage && !root.failed && !root.finished
        spacing: 9
        Spinner { anchors.verticalCenter: parent.verticalCenter }
        Label {
            type: Theme.sub
            color: Theme.text2
            text: L.t("setup.footer.wait")
        }
    }
    Row {
        id: failure
        anchors { left: parent.left; leftMargin: Theme.padWindow; verticalCenter: parent.verticalCenter }
        visible: root.failed
        spacing: Theme.gapGroup
        PillButton {
            id: retry
            kind: PillButton.Primary
            buttonHeight: Theme.buttonLarge
            enabled: !root.runner.running // a script may put things in order after it has failed
            onEnabledChanged: if (enabled && root.failed) root.focusFirst()
            text: L.t("setup.action.retry")
            onClicked: {
                root.runner.start();
                root.forceActiveFocus(Qt.OtherFocusReason); // no other button, since it comes back when the run fails again
            }
        }
        PillButton {
            buttonHeight: Theme.buttonLarge
            text: L.t("setup.action.log")
            onClicked: root.runner.openLog()
        }
    }
    Label {
        anchors { left: failure.right; leftMargin: 16; right: parent.right; rightMargin: Theme.padWindow }
        anchors.verticalCenter: parent.verticalCenter
        visible: root.failed
        type: Theme.fixedPitch
        color: Theme.text3
        wrapMode: Text.Wrap
        elide: Text.ElideRight
        maximumLineCount: 3
        text: root.runner.tail
        Accessible.role: Accessible.AlertMessage
    }
    Row {
        anchors { left: parent.left; leftMargin: Theme.padWindow; verticalCenter: parent.verticalCenter }
        visible: root.finished && !root.perms.allGranted
        spacing: Theme.gapIcon
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            size: Theme.symbolText
            name: "exclamationmark.triangle"
            ink: Theme.inkPink
        }
        Label {
            type: Theme.sub
            color: Theme.inkPink
            text: L.t("permissions.subtitle.missing", root.perms.names(root.perms.missingTitleKeys, L.language))
        }
    }
    PillButton {
        id: start
        anchors { right: parent.right; rightMargin: Theme.padWindow; verticalCenter: parent.verticalCenter }
        visible: root.finished
        kind: PillButton.Primary
        buttonHeight: Theme.buttonLarge
        text: root.perms.allGranted ? L.t("setup.action.start") : L.t("setup.action.start_anyway")
        onClicked: root.done()
    }
}
