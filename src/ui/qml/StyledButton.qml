import QtQuick
import Zuvo

/// What the three styles of large buttons share: a symbol and a text, a size that gives way under the finger.
PlainButton {
    id: button

    property string symbolName: ""
    property real symbolSize: 15
    property color textColor: Theme.foreground
    property color symbolColor: textColor
    property int textWeight: Font.DemiBold
    property int textSize: 15
    property color fill: "transparent"
    property color lineColor: "transparent"
    property real cornerRadius: 18

    // How far the shadow has sunk: 0 released, 1 pressed.
    property real sunk: down ? 1 : 0
    property color shadowColor: "transparent"
    property real shadowRadius: 14 ///< released

    implicitHeight: 48
    leftPadding: Theme.spacing24
    rightPadding: Theme.spacing24
    ringRadius: cornerRadius
    scale: down ? 0.98 : 1.0
    opacity: isAvailable ? 1 : 0.45

    Behavior on scale {
        // Response 0.25 s, damping fraction 0.7, in the animation's own steps of 16 ms.
        SpringAnimation { spring: 7.6; damping: 0.43; epsilon: 0.0005 }
    }
    Behavior on sunk { NumberAnimation { duration: 150; easing.type: Easing.InOutQuad } }

    background: Item {
        // One shadow gives way to the other: a blur is too dear to be drawn for each step between them.
        Loader {
            anchors.fill: parent
            active: button.shadowColor.a > 0 && button.isAvailable
            opacity: 1 - button.sunk
            sourceComponent: SoftShadow {
                cornerRadius: button.cornerRadius
                color: Theme.faded(button.shadowColor, 0.3)
                radius: button.shadowRadius
                offsetY: 6 - 4 * button.sunk
            }
        }
        Loader {
            anchors.fill: parent
            active: button.shadowColor.a > 0 && button.isAvailable && button.sunk > 0
            opacity: button.sunk
            sourceComponent: SoftShadow {
                cornerRadius: button.cornerRadius
                color: Theme.faded(button.shadowColor, 0.15)
                radius: 5
                offsetY: 6 - 4 * button.sunk
            }
        }
        Rectangle {
            anchors.fill: parent
            radius: button.cornerRadius
            color: button.fill
            border.width: button.lineColor.a > 0 ? Hairline.width(Screen.devicePixelRatio) : 0
            border.color: button.lineColor
            Behavior on color { ColorAnimation { duration: 150 } }
        }
    }

    readonly property real symbolRoom: symbolName !== "" ? Math.round(symbolSize * 1.2) + Theme.spacing8 : 0

    contentItem: Item {
        implicitWidth: Math.ceil(label.implicitWidth) + button.symbolRoom
        implicitHeight: label.implicitHeight
        Row {
            id: row
            anchors.centerIn: parent
            spacing: Theme.spacing8
            Symbol {
                visible: button.symbolName !== ""
                anchors.verticalCenter: parent.verticalCenter
                name: button.symbolName
                size: button.symbolSize
                color: button.symbolColor
            }
            Text {
                id: label
                anchors.verticalCenter: parent.verticalCenter
                text: button.text
                textFormat: Text.PlainText
                font: Theme.textFont(button.textSize, button.textWeight)
                color: button.textColor
                width: Math.min(implicitWidth, button.availableWidth - button.symbolRoom)
                elide: Text.ElideRight
            }
        }
    }
}
