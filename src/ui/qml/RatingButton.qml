import QtQuick
import QtQuick.Window
import Zuvo

/// One of the two ratings of a mine.
PlainButton {
    id: button

    property string symbolName: ""
    property bool isChosen: false
    property color ink: Theme.success    ///< once chosen
    property real tintOpacity: 0.08

    implicitWidth: 128
    implicitHeight: 80
    ringRadius: Theme.radiusMd
    Accessible.role: Accessible.RadioButton
    Accessible.checkable: true
    Accessible.checked: isChosen

    background: Rectangle {
        radius: Theme.radiusMd
        color: button.isChosen ? Theme.faded(button.ink, button.tintOpacity)
                               : button.down || button.hovered ? Theme.surfaceHover : Theme.surface
        border.width: Hairline.width(Screen.devicePixelRatio)
        border.color: button.isChosen ? Theme.faded(button.ink, 0.2) : Theme.faded(Theme.border, 0.15)
        Behavior on color { ColorAnimation { duration: 150 } }
    }
    contentItem: Item {
        Column {
            anchors.centerIn: parent
            spacing: Theme.spacing6
            Symbol {
                anchors.horizontalCenter: parent.horizontalCenter
                name: button.symbolName
                size: 22
                color: button.isChosen ? button.ink : Theme.faded(Theme.textMuted, 0.4)
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: button.text
                font: Theme.textFont(11, Font.Medium)
                color: button.isChosen ? button.ink : Theme.textMuted
            }
        }
    }
}
