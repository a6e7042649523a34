import QtQuick
import Zuvo

/// A card that lets the page shine through.
CardLayout {
    id: card

    property real cornerRadius: Theme.radiusMd

    SoftShadow {
        parent: card
        z: -2
        anchors.fill: parent
        color: Qt.rgba(0, 0, 0, 0.25)
        radius: 16
        offsetY: 6
        cornerRadius: card.cornerRadius
    }
    CardSurface {
        parent: card
        z: -1
        anchors.fill: parent
        fill: "transparent"
        cornerRadius: card.cornerRadius
        borderTop: Theme.faded(Theme.border, 0.15)
    }
}
