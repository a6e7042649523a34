import QtQuick
import Zuvo

/// Writes the story in one form, which its small line tells the use of.
PlainButton {
    id: button

    property string symbolName: ""
    property string line: ""

    implicitHeight: 64
    leftPadding: Theme.spacing16
    rightPadding: Theme.spacing12
    ringRadius: Theme.radiusSm
    Accessible.description: line

    background: CardSurface {
        cornerRadius: Theme.radiusSm
        fill: button.down || button.hovered ? Theme.surfaceHover : Theme.cardBg
        borderTop: Theme.faded(Theme.border, 0.2)
    }
    contentItem: Item {
        Rectangle {
            id: box
            anchors.verticalCenter: parent.verticalCenter
            width: 36
            height: 36
            radius: Theme.radiusXs
            color: Theme.faded(Theme.accent, 0.1)
            Symbol {
                anchors.centerIn: parent
                name: button.symbolName
                size: 16
                color: Theme.accent
            }
        }
        Column {
            anchors.left: box.right
            anchors.leftMargin: Theme.spacing12
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.spacing4
            Text {
                width: parent.width
                text: button.text
                elide: Text.ElideRight
                font: Theme.textFont(13, Font.DemiBold)
                color: Theme.foreground
            }
            Text {
                width: parent.width
                text: button.line
                elide: Text.ElideRight
                font: Theme.textFont(7, Font.Normal)
                color: Theme.textMuted
            }
        }
    }
}
