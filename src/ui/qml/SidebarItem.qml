import QtQuick
import Zuvo

/// One entry of the sidebar.
PlainButton {
    id: item

    required property string iconName
    required property string label
    required property bool isSelected
    readonly property bool isHovered: hovered

    // How far it has come on its way to being chosen, and to being pointed at.
    property real chosen: isSelected ? 1 : 0
    property real lit: isHovered ? 1 : 0
    Behavior on chosen { NumberAnimation { duration: 200; easing.type: Easing.InOutQuad } }
    Behavior on lit { NumberAnimation { duration: 150; easing.type: Easing.InOutQuad } }

    text: label
    implicitHeight: 36
    ringRadius: Theme.radiusSm
    Accessible.selected: isSelected

    background: Rectangle {
        radius: Theme.radiusSm
        color: Theme.between(Theme.faded(Theme.foreground, 0.03 * item.lit), Theme.faded(Theme.torchGlow, 0.08), item.chosen)
    }
    contentItem: Item {
        Rectangle {
            id: bar
            x: 6
            anchors.verticalCenter: parent.verticalCenter
            width: 3
            height: 18
            radius: 1.5
            color: Theme.torchGlow
            opacity: item.chosen
        }
        Item {
            id: iconBox
            x: bar.x + bar.width + 9
            width: 22
            height: parent.height
            Symbol {
                anchors.centerIn: parent
                name: item.iconName
                size: 15
                weight: item.isSelected ? Font.DemiBold : Font.Normal
                // A drawing has one colour at a time: it is made anew for each.
                color: item.isSelected ? Theme.foreground : item.isHovered ? Theme.textSecondary : Theme.textMuted
            }
        }
        Text {
            x: iconBox.x + iconBox.width + 8
            width: parent.width - x - 8
            anchors.verticalCenter: parent.verticalCenter
            text: item.label
            elide: Text.ElideRight
            font: Theme.textFont(13, item.isSelected ? Font.DemiBold : Font.Normal)
            color: Theme.between(Theme.between(Theme.textMuted, Theme.textSecondary, item.lit), Theme.foreground, item.chosen)
        }
    }
}
