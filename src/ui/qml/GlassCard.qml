import QtQuick
import Zuvo

/// A raised card with a soft shadow.
CardLayout {
    id: card

    property real cornerRadius: Theme.radiusLg

    SoftShadow {
        parent: card
        z: -2
        anchors.fill: parent
        radius: 16
        offsetY: 6
        cornerRadius: card.cornerRadius
    }
    CardSurface {
        parent: card
        z: -1
        anchors.fill: parent
        cornerRadius: card.cornerRadius
        borderTop: Theme.faded(Theme.border, 0.25)
        borderBottom: Theme.faded(Theme.border, 0.2)
    }
}
