pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Report
import Murmeli.Ui

// An idea, with what spoke for and against it.
ClaimCard {
    id: root

    required property discussedConcept value

    stamps: value.stamps
    title: value.idea

    Row {
        topPadding: 8
        visible: root.value.pros.length > 0 || root.value.cons.length > 0
        spacing: 20
        Repeater {
            model: [
                { items: root.value.pros, ink: Theme.green },
                { items: root.value.cons, ink: Theme.red }
            ]
            Column {
                id: half
                required property var modelData
                width: (root.width - 20) / 2
                spacing: 5
                Repeater {
                    model: half.modelData.items
                    Bullet {
                        required property string modelData
                        width: half.width
                        text: modelData
                        ink: half.modelData.ink
                    }
                }
            }
        }
    }
}
