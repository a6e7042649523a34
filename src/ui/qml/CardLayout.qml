import QtQuick
import Zuvo

/// Holds what a card shows, inset by its padding; the card is as high as that.
Item {
    id: card

    default property alias content: holder.data
    property real padding: Theme.spacing24
    property alias spacing: holder.spacing

    implicitWidth: holder.implicitWidth + 2 * padding
    implicitHeight: holder.implicitHeight + 2 * padding

    Column {
        id: holder
        x: card.padding
        y: card.padding
        width: card.width - 2 * card.padding
    }
}
