import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Zuvo

/// A strong moment that the cut leaves out. A tap anywhere opens it and closes it again.
PlainButton {
    id: card

    property string quote: ""
    property string range: ""
    property string length: ""
    property int stars: 0
    property string reason: ""
    property bool isExpanded: false
    property bool isSelected: false
    property color starColor: "#FFD60A"
    /// 0 closed, 1 open; on the way in between, both ways.
    property real openness: isExpanded ? 1 : 0
    property int duration: 200 ///< of the way, in ms
    signal selectTapped

    Behavior on openness {
        NumberAnimation { duration: card.duration; easing.type: Easing.InOutQuad }
    }

    padding: Theme.spacing16
    ringRadius: 10
    text: quote
    Accessible.description: range + ", " + length + ", " + stars + " stars"
    Accessible.checkable: true
    Accessible.checked: isExpanded

    implicitHeight: implicitContentHeight + topPadding + bottomPadding

    background: Item {
        SoftShadow {
            anchors.fill: parent
            visible: card.isSelected
            color: Theme.faded(Theme.accent, 0.2)
            radius: 8
            offsetY: 4
            isHollow: true
            cornerRadius: 10
        }
        CardSurface {
            anchors.fill: parent
            cornerRadius: 10
            // Thin material: the ground shines through.
            fill: Theme.faded(card.hovered ? Theme.surfaceHover : Theme.cardBg, 0.6)
            sheen: null
            borderWidth: card.isSelected ? 1.5 : Hairline.width(Screen.devicePixelRatio)
            borderTop: card.isSelected ? Theme.faded(Theme.accent, 0.7) : Theme.faded(Theme.border, 0.4)
            borderBottom: card.isSelected ? Theme.faded(Theme.accent, 0.3) : Theme.faded(Theme.border, 0.2)
        }
    }

    contentItem: Item {
        id: content
        implicitHeight: head.height + card.openness * (Theme.spacing16 + details.height)
        clip: card.openness > 0 && card.openness < 1

        Column {
            id: head
            width: parent.width
            spacing: Theme.spacing6
            Text {
                width: parent.width
                text: card.quote
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                lineHeight: 1.2
                font: Theme.textFont(12, Font.Medium)
                color: Theme.foreground
            }
            Row {
                spacing: Theme.spacing8
                Text {
                    anchors.verticalCenter: parent.verticalCenter
                    text: card.range
                    textFormat: Text.PlainText
                    font: Theme.mono(10)
                    color: Theme.textMuted
                }
                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: lengthText.implicitWidth + Theme.spacing12
                    height: 15
                    radius: 3
                    color: Theme.faded(Theme.accent, 0.2)
                    Text {
                        id: lengthText
                        anchors.centerIn: parent
                        text: card.length
                        textFormat: Text.PlainText
                        font: Theme.textFont(9, Font.DemiBold)
                        color: Theme.foreground
                    }
                }
            }
            Flow {
                width: parent.width
                visible: card.stars > 0
                spacing: Theme.spacing2
                Repeater {
                    model: card.stars
                    Symbol {
                        name: "star.fill"
                        size: 8
                        color: card.starColor
                    }
                }
            }
        }
        Column {
            id: details
            y: head.height + Theme.spacing16
            width: parent.width
            visible: card.openness > 0
            opacity: card.openness
            enabled: card.isExpanded // nothing in it can be reached while it goes
            spacing: Theme.spacing12
            Rectangle {
                width: parent.width
                height: Hairline.width(Screen.devicePixelRatio)
                color: Theme.faded(Theme.border, 0.4)
            }
            Label {
                width: parent.width
                text: card.reason
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                lineHeight: 1.2
                font: Theme.caption2()
                color: Theme.textMuted
            }
            PlainButton {
                id: selectButton
                objectName: card.objectName + "Select"
                implicitHeight: 28
                leftPadding: Theme.spacing12
                rightPadding: Theme.spacing12
                ringRadius: 6
                text: card.isSelected ? "Selected" : "Select"
                Accessible.role: Accessible.CheckBox
                Accessible.checkable: true
                Accessible.checked: card.isSelected
                onClicked: card.selectTapped()
                background: Rectangle {
                    radius: 6
                    color: card.isSelected ? Theme.faded(Theme.foreground, 0.15) : Theme.faded(Theme.border, 0.3)
                }
                contentItem: Row {
                    spacing: Theme.spacing6
                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        name: card.isSelected ? "checkmark.circle.fill" : "circle"
                        size: 11
                        color: Theme.foreground
                    }
                    Text {
                        anchors.verticalCenter: parent.verticalCenter
                        text: selectButton.text
                        font: Theme.textFont(11, Font.Medium)
                        color: Theme.foreground
                    }
                }
            }
        }
    }
}
