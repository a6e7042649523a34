import QtQuick
import Zuvo

/// One entry of the sidebar.
PlainButton {
    id: item

    required property string iconName
    required property string label
    required property bool isSelected
    readonly property bool isHovered: hovered
    readonly property color ink: isSelected ? Theme.foreground : isHovered ? Theme.textSecondary : Theme.textMuted

    text: label
    implicitHeight: 36
    ringRadius: Theme.radiusSm
    Accessible.selected: isSelected

    background: Rectangle {
        radius: Theme.radiusSm
        color: item.isSelected ? Theme.faded(Theme.torchGlow, 0.08)
                               : item.isHovered ? Theme.faded(Theme.foreground, 0.03)
                                                : Theme.faded(Theme.foreground, 0)
        Behavior on color { ColorAnimation { duration: item.isSelected ? 200 : 150; easing.type: Easing.InOutQuad } }
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
            opacity: item.isSelected ? 1 : 0
            Behavior on opacity { NumberAnimation { duration: 200; easing.type: Easing.InOutQuad } }
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
                color: item.ink
            }
        }
        Text {
            x: iconBox.x + iconBox.width + 8
            width: parent.width - x - 8
            anchors.verticalCenter: parent.verticalCenter
            text: item.label
            elide: Text.ElideRight
            font: Theme.textFont(13, item.isSelected ? Font.DemiBold : Font.Normal)
            color: item.ink
            Behavior on color { ColorAnimation { duration: 150; easing.type: Easing.InOutQuad } }
        }
    }
}
