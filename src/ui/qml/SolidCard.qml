import QtQuick
import Zuvo

/// A flat card.
CardLayout {
    id: card

    property real cornerRadius: Theme.radiusMd

    CardSurface {
        parent: card
        z: -1
        anchors.fill: parent
        cornerRadius: card.cornerRadius
        borderTop: Theme.faded(Theme.border, 0.2)
    }
}
