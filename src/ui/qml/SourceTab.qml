import QtQuick
import Zuvo

/// One of the sources that footage can come from.
PlainButton {
    id: tab

    required property string iconName
    required property bool isChosen
    readonly property color ink: isChosen ? Theme.accent : hovered ? Theme.textSecondary : Theme.textMuted

    implicitHeight: 32
    leftPadding: Theme.spacing12
    rightPadding: Theme.spacing12
    Accessible.role: Accessible.PageTab
    Accessible.selected: isChosen

    background: Rectangle {
        radius: Theme.radiusXs
        color: Theme.faded(Theme.accent, tab.isChosen ? 0.08 : 0)
        Behavior on color { ColorAnimation { duration: 200; easing.type: Easing.InOutQuad } }
    }
    contentItem: Row {
        spacing: Theme.spacing8
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: tab.iconName
            size: 11
            color: tab.ink
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: tab.text
            font: Theme.textFont(13, tab.isChosen ? Font.DemiBold : Font.Medium)
            color: tab.ink
            Behavior on color { ColorAnimation { duration: 200; easing.type: Easing.InOutQuad } }
        }
    }
}
