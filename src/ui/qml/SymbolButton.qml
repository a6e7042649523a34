import QtQuick
import Zuvo

/// A button of a symbol and a text, or of a symbol alone; the text is then what it is called.
PlainButton {
    id: button

    required property string symbolName
    property real symbolSize: 12
    property color ink: Theme.textMuted
    property color hoverInk: ink
    property color fill: "transparent"
    property font textFont: Theme.textFont(12, Font.Medium)
    property bool showsText: true
    readonly property color current: hovered && isAvailable ? hoverInk : ink

    implicitHeight: 32
    leftPadding: Theme.spacing12
    rightPadding: Theme.spacing12

    background: Rectangle {
        radius: button.ringRadius
        color: button.fill
    }
    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight
        Row {
            id: row
            anchors.centerIn: parent
            spacing: Theme.spacing8
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                name: button.symbolName
                size: button.symbolSize
                color: button.current
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                visible: button.showsText
                text: button.text
                font: button.textFont
                color: button.current
            }
        }
    }
}
