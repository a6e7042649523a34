import QtQuick
import Zuvo

/// One of two views to choose between.
PlainButton {
    id: tab

    required property bool isChosen
    required property string symbolName
    property real symbolSize: 10
    property real textSize: 13
    readonly property color ink: isChosen ? Theme.accent : hovered ? Theme.textSecondary : Theme.textMuted

    implicitHeight: 32
    leftPadding: Theme.spacing12
    rightPadding: Theme.spacing12
    Accessible.role: Accessible.RadioButton
    Accessible.checkable: true
    Accessible.checked: isChosen

    background: Rectangle {
        radius: Theme.radiusXs
        color: Theme.faded(Theme.accent, tab.isChosen ? 0.1 : 0)
        Behavior on color { ColorAnimation { duration: 150 } }
    }
    contentItem: Row {
        spacing: Theme.spacing8
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: tab.symbolName
            size: tab.symbolSize
            color: tab.ink
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: tab.text
            font: Theme.textFont(tab.textSize, tab.isChosen ? Font.DemiBold : Font.Medium)
            color: tab.ink
        }
    }
}
