import QtQuick
import Murmeli.Panel
import Murmeli.Ui

// A small gear that turns while earlier meetings are written up.
Symbol {
    id: root

    required property bool moving

    name: "gearshape.2.fill"
    ink: Theme.inkCyan

    RotationAnimator on rotation {
        from: 0
        to: 360
        duration: Theme.turn
        loops: Animation.Infinite
        running: root.moving && root.visible && Theme.motion
    }
}
