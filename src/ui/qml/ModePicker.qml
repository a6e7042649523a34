import QtQuick
import Zuvo

/// The modes beside each other: a radio group that the arrow keys walk through.
Column {
    id: picker

    required property SetupPageModel model

    spacing: Theme.spacing8

    SectionLabel { text: "MODE" }
    Row {
        id: row
        width: parent.width
        spacing: width >= 360 ? Theme.spacing8 : Theme.spacing6
        Accessible.role: Accessible.Grouping
        Accessible.name: "Mode"
        readonly property real highest: {
            let most = 0;
            for (let i = 0; i < cards.count; ++i)
                most = Math.max(most, cards.itemAt(i) ? cards.itemAt(i).implicitHeight : 0);
            return most;
        }
        Repeater {
            id: cards
            model: picker.model.modes
            ModeCard {
                id: card
                required property int index
                required property var modelData
                objectName: "mode" + index
                width: (row.width - 3 * row.spacing) / 4
                height: row.highest
                label: modelData.label
                subtitle: modelData.subtitle
                tint: Theme[modelData.color]
                isChosen: picker.model.mode === index
                onClicked: picker.model.chooseMode(index)
                Keys.onLeftPressed: picker.walk(index - 1)
                Keys.onUpPressed: picker.walk(index - 1)
                Keys.onRightPressed: picker.walk(index + 1)
                Keys.onDownPressed: picker.walk(index + 1)
            }
        }
    }

    function walk(place) {
        const next = (place + cards.count) % cards.count;
        // The keyboard first: the card that it leaves drops out of the tab order.
        cards.itemAt(next).forceActiveFocus(Qt.TabFocusReason);
        model.chooseMode(next);
    }
}
