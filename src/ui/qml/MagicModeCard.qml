import QtQuick
import QtQuick.Window
import Zuvo

/// Leaves the style to the analysis.
PlainButton {
    id: card

    required property bool isOn

    text: "The Canary"
    implicitHeight: 78
    ringRadius: Theme.radiusMd
    padding: Theme.spacing16
    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: isOn
    Accessible.description: "Let the AI be your guide — it listens to the echoes and finds the story for you"

    background: Item {
        SoftShadow {
            anchors.fill: parent
            cornerRadius: Theme.radiusMd
            radius: 8
            offsetY: 0
            color: Theme.faded(Theme.torchGlow, 0.15)
            opacity: card.isOn ? 1 : 0
            Behavior on opacity { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusMd
            color: card.isOn ? Theme.background : card.hovered ? Theme.surfaceHover : Theme.surface
            border.width: card.isOn ? 0 : 1
            border.color: Theme.faded(Theme.border, 0.2)
            Behavior on color { ColorAnimation { duration: 250; easing.type: Easing.InOutQuad } }
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusMd
            opacity: card.isOn ? 1 : 0
            gradient: Gradient {
                GradientStop { position: 0; color: Theme.faded(Theme.torchGlow, 0.12) }
                GradientStop { position: 1; color: Theme.faded(Theme.torchGlow, 0.06) }
            }
            border.width: 1.5
            border.color: Theme.faded(Theme.torchGlow, 0.5)
            Behavior on opacity { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }
        }
    }
    contentItem: Item {
        Rectangle {
            id: plate
            anchors.verticalCenter: parent.verticalCenter
            width: 44
            height: 44
            radius: 22
            color: card.isOn ? Theme.faded(Theme.torchGlow, 0.15) : Theme.faded(Theme.border, 0.3)
            Symbol {
                anchors.centerIn: parent
                name: "wand.and.stars"
                size: 20
                color: card.isOn ? Theme.torchGlow : Theme.textMuted
            }
        }
        Column {
            anchors.left: plate.right
            anchors.leftMargin: Theme.spacing16
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.spacing4
            Row {
                spacing: Theme.spacing8
                Text {
                    text: card.text
                    font: Theme.textFont(14, Font.DemiBold)
                    color: Theme.foreground
                }
                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    visible: card.isOn
                    width: tag.implicitWidth + 10
                    height: 14
                    radius: 3
                    color: Theme.torchGlow
                    Text {
                        id: tag
                        anchors.centerIn: parent
                        text: "ON"
                        font: Theme.textFont(9, Font.Bold)
                        color: Theme.background
                    }
                }
            }
            Text {
                width: parent.width
                text: card.Accessible.description
                elide: Text.ElideRight
                font: Theme.textFont(11)
                color: Theme.textMuted
            }
        }
    }
}
