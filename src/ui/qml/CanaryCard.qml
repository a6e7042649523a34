import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// What magic mode went by.
TintCard {
    id: card

    property string explanation: ""

    tint: Theme.torchGlow
    padding: Theme.spacing20
    Item {
        width: parent.width
        height: magicText.height
        Symbol {
            y: 1
            name: "wand.and.stars"
            size: 18
            color: Theme.torchGlow
        }
        Column {
            id: magicText
            x: 36
            width: parent.width - x
            spacing: Theme.spacing4
            Label {
                text: "The Canary found:"
                font: Theme.textFont(13, Font.DemiBold)
                color: Theme.foreground
            }
            Label {
                width: parent.width
                text: card.explanation
                wrapMode: Text.Wrap
                lineHeight: 1.2
                font: Theme.caption()
                color: Theme.textMuted
            }
        }
    }
}
