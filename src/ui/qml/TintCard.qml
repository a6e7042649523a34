import QtQuick
import Zuvo

/// A flat card in a tint of one colour, with a fine border of the same.
CardLayout {
    id: card

    property color tint: Theme.accent
    property real tintOpacity: 0.06
    property real borderOpacity: 0.2
    property real cornerRadius: Theme.radiusMd

    Rectangle {
        parent: card
        z: -1
        anchors.fill: parent
        radius: card.cornerRadius
        color: Theme.faded(card.tint, card.tintOpacity)
        border.width: Hairline.width(Screen.devicePixelRatio)
        border.color: Theme.faded(card.tint, card.borderOpacity)
    }
}
