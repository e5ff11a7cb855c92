import QtQuick
import Murmeli.Localisation
import Murmeli.Protocol
import Murmeli.Ui

// The service has put back what the user had changed.
Callout {
    id: root

    required property ProtocolChanges changes

    accent: Theme.pink
    ink: Theme.inkPink
    symbol: "exclamationmark.triangle"
    title: L.t("ledger.conflict")
    body: L.t("ledger.conflict.what", changes.overwritten)

    Flow {
        width: parent.width
        topPadding: 7
        spacing: Theme.gapSmall
        PillButton {
            kind: PillButton.Primary
            text: L.t("ledger.restore")
            onClicked: root.changes.restore()
        }
        PillButton {
            text: L.t("ledger.keep")
            onClicked: root.changes.keep()
        }
    }
}
