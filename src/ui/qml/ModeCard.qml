import QtQuick
import QtQuick.Window
import Zuvo

/// One mode of mining. Of the cards only the chosen one takes part in the tab order, as with radio buttons.
PlainButton {
    id: card

    required property string label
    required property string subtitle
    required property color tint
    required property bool isChosen

    text: label
    padding: width >= 84 ? 10 : 6
    topPadding: Theme.spacing12
    bottomPadding: Theme.spacing12
    ringRadius: Theme.radiusSm
    focusPolicy: isChosen ? Qt.StrongFocus : Qt.ClickFocus
    Accessible.role: Accessible.RadioButton
    Accessible.description: subtitle
    Accessible.checkable: true
    Accessible.checked: isChosen

    background: Rectangle {
        radius: Theme.radiusSm
        color: card.hovered && !card.isChosen ? Theme.surfaceHover : Theme.surface
        border.width: Hairline.width(Screen.devicePixelRatio)
        border.color: card.isChosen ? Theme.faded(card.tint, 0.4) : Theme.faded(Theme.border, 0.2)
        Rectangle {
            anchors.fill: parent
            anchors.margins: parent.border.width
            radius: parent.radius - parent.border.width
            visible: card.isChosen
            color: Theme.background
        }
        Rectangle {
            anchors.fill: parent
            anchors.margins: parent.border.width
            radius: parent.radius - parent.border.width
            visible: card.isChosen
            gradient: Gradient {
                GradientStop { position: 0; color: Theme.faded(card.tint, 0.12) }
                GradientStop { position: 1; color: Theme.faded(card.tint, 0.03) }
            }
        }
    }
    contentItem: Column {
        PixelGemView {
            size: 16
            color: card.tint
        }
        Item { width: 1; height: 10 }
        Text {
            width: parent.width
            text: card.label
            elide: Text.ElideRight
            font: Theme.textFont(12, card.isChosen ? Font.DemiBold : Font.Medium)
            color: card.isChosen ? Theme.foreground : Theme.textMuted
        }
        Item { width: 1; height: Theme.spacing4 }
        Text {
            width: parent.width
            text: card.subtitle
            wrapMode: Text.Wrap
            lineHeightMode: Text.FixedHeight
            lineHeight: 12
            font: Theme.textFont(9)
            color: Theme.faded(Theme.textMuted, 0.5)
        }
    }
}
