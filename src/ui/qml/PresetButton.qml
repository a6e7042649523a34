import QtQuick
import QtQuick.Window
import Zuvo

/// One style preset.
PlainButton {
    id: button

    required property string symbolName
    required property string description
    required property bool isSelected
    readonly property bool isHovered: hovered

    implicitHeight: 76
    leftPadding: width >= 160 ? 12 : 8
    rightPadding: leftPadding
    topPadding: 12
    bottomPadding: 8
    ringRadius: 6
    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: isSelected
    Accessible.description: description

    background: Rectangle {
        radius: 6
        color: button.isHovered ? Theme.surfaceHover : Theme.surface
        border.width: button.isSelected ? 1 : Hairline.width(Screen.devicePixelRatio)
        border.color: button.isSelected ? Theme.faded(Theme.accent, 0.4) : Theme.faded(Theme.border, 0.5)
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            visible: button.isSelected
            color: Theme.faded(Theme.accent, 0.08)
        }
    }
    contentItem: Column {
        spacing: Theme.spacing4
        Row {
            spacing: Theme.spacing6
            Symbol {
                id: symbol
                anchors.verticalCenter: parent.verticalCenter
                name: button.symbolName
                size: 12
                color: button.isSelected ? Theme.accent : Theme.textMuted
            }
            Text {
                width: Math.min(implicitWidth, button.availableWidth - symbol.width - parent.spacing)
                text: button.text
                elide: Text.ElideRight
                font: Theme.textFont(14, button.isSelected ? Font.DemiBold : Font.Medium)
                color: Theme.foreground
            }
        }
        Text {
            width: parent.width
            text: button.description
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
            lineHeightMode: Text.FixedHeight
            lineHeight: 12
            font: Theme.textFont(9)
            color: Theme.textMuted
        }
    }
}
