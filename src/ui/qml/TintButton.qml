import QtQuick
import Zuvo

/// A small button on a tint of its own colour.
PlainButton {
    id: button

    property string symbolName: ""
    property real symbolSize: 10
    property real textSize: 12
    property color tint: Theme.accent

    implicitHeight: 32
    leftPadding: Theme.spacing12
    rightPadding: Theme.spacing12

    background: Rectangle {
        radius: Theme.radiusXs
        color: Theme.faded(button.tint, button.down ? 0.18 : button.hovered ? 0.13 : 0.08)
        Behavior on color { ColorAnimation { duration: 150 } }
    }
    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight
        Row {
            id: row
            anchors.centerIn: parent
            spacing: Theme.spacing8
            Symbol {
                visible: button.symbolName !== ""
                anchors.verticalCenter: parent.verticalCenter
                name: button.symbolName
                size: button.symbolSize
                color: button.tint
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: button.text
                textFormat: Text.PlainText
                font: Theme.textFont(button.textSize, Font.DemiBold)
                color: button.tint
            }
        }
    }
}
