import QtQuick
import QtQuick.Window
import Zuvo

/// The button that leads on: a fill with a shadow of its colour, a text and a symbol at one side of it.
PlainButton {
    id: button

    property color fill: Theme.accent
    property color ink: "white"
    property string symbolName: ""
    property bool isSymbolLast: false

    implicitHeight: 48
    leftPadding: Theme.spacing24
    rightPadding: Theme.spacing24
    ringRadius: Theme.radiusMd
    scale: down ? 0.98 : 1.0
    Behavior on scale { SpringAnimation { spring: 7.6; damping: 0.43; epsilon: 0.0005 } }

    background: Item {
        SoftShadow {
            anchors.fill: parent
            visible: button.isAvailable
            cornerRadius: Theme.radiusMd
            color: Theme.faded(button.fill, 0.3)
            radius: 16
            offsetY: 6
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusMd
            color: button.isAvailable ? button.fill : Theme.faded(Theme.textMuted, 0.2)
            border.width: button.isAvailable ? Hairline.width(Screen.devicePixelRatio) : 0
            border.color: Qt.tint(button.fill, Qt.rgba(1, 1, 1, 0.15))
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusMd
            visible: button.isAvailable && button.hovered && !button.down
            color: Qt.rgba(1, 1, 1, 0.06)
        }
    }
    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight
        Row {
            id: row
            anchors.centerIn: parent
            spacing: Theme.spacing12
            layoutDirection: button.isSymbolLast ? Qt.RightToLeft : Qt.LeftToRight
            Symbol {
                visible: button.symbolName !== ""
                anchors.verticalCenter: parent.verticalCenter
                name: button.symbolName
                size: 13
                color: label.color
            }
            Text {
                id: label
                anchors.verticalCenter: parent.verticalCenter
                text: button.text
                font: Theme.textFont(15, Font.DemiBold)
                color: button.isAvailable ? button.ink : Theme.faded(Theme.foreground, 0.4)
            }
        }
    }
}
