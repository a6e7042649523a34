import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Whether DaVinci Resolve answers, and with which project.
GlassCard {
    id: card

    required property SetupPageModel model
    readonly property color light: model.isConnected ? Theme.success : Theme.error

    cornerRadius: Theme.radiusMd
    padding: Theme.spacing16

    Item {
        width: parent.width
        implicitHeight: Math.max(36, words.implicitHeight)
        Rectangle {
            id: halo
            anchors.verticalCenter: parent.verticalCenter
            width: 28
            height: 28
            radius: 14
            color: Theme.faded(card.light, 0.1)
            Rectangle {
                anchors.centerIn: parent
                width: 10
                height: 10
                radius: 5
                color: card.light
            }
        }
        Column {
            id: words
            anchors.left: halo.right
            anchors.leftMargin: Theme.spacing12
            anchors.right: refreshButton.left
            anchors.rightMargin: Theme.spacing12
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.spacing2
            Label {
                objectName: "connectionTitle"
                width: parent.width
                text: card.model.connectionTitle
                font: Theme.textFont(14, Font.DemiBold)
                color: Theme.foreground
            }
            Label {
                width: parent.width
                text: card.model.connectionDetail
                textFormat: Text.PlainText
                elide: Text.ElideRight
                maximumLineCount: 1
                font: Theme.textFont(12)
                color: Theme.textMuted
            }
        }
        TintButton {
            id: refreshButton
            objectName: "refreshButton"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: "Refresh"
            onClicked: card.model.refresh()
        }
    }
}
