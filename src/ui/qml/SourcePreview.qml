import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The timeline that is to be mined.
Rectangle {
    id: preview

    required property string name

    implicitHeight: 66
    radius: Theme.radiusSm
    color: Theme.faded(Theme.accent, 0.04)
    border.width: 1
    border.color: Theme.faded(Theme.accent, 0.15)

    Rectangle {
        id: plate
        x: Theme.spacing12
        anchors.verticalCenter: parent.verticalCenter
        width: 40
        height: 40
        radius: Theme.radiusXs
        color: Theme.muted
        Symbol {
            anchors.centerIn: parent
            name: "waveform"
            size: 16
            color: Theme.textMuted
        }
    }
    Column {
        anchors.left: plate.right
        anchors.leftMargin: Theme.spacing12
        anchors.right: gem.left
        anchors.rightMargin: Theme.spacing12
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.spacing2
        Label {
            width: parent.width
            text: preview.name
            textFormat: Text.PlainText
            elide: Text.ElideRight
            maximumLineCount: 1
            font: Theme.textFont(12, Font.Medium)
            color: Theme.foreground
        }
        Label {
            width: parent.width
            text: "Duration & tracks detected on export"
            textFormat: Text.PlainText
            elide: Text.ElideRight
            font: Theme.textFont(10)
            color: Theme.textMuted
        }
    }
    PixelGemView {
        id: gem
        anchors.right: parent.right
        anchors.rightMargin: Theme.spacing16
        anchors.verticalCenter: parent.verticalCenter
        size: 12
        color: Theme.accent
    }
}
