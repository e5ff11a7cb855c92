pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Notices
import Murmeli.Ui

// What can be done about a notice.
Flow {
    id: root

    required property list<noticeAction> actions

    signal acted(int action)

    spacing: 6

    Repeater {
        model: root.actions
        delegate: PillButton {
            required property noticeAction modelData
            kind: modelData.first ? PillButton.Primary : PillButton.Secondary
            text: modelData.text
            onClicked: root.acted(modelData.action)
        }
    }
}
