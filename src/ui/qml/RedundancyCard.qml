import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Two places of the cut that say the same.
SolidCard {
    id: card

    property string topic: ""
    property string first: "" ///< range
    property string second: "" ///< range

    padding: Theme.spacing16
    spacing: Theme.spacing12
    cornerRadius: Theme.radiusSm
    Row {
        width: parent.width
        spacing: Theme.spacing8
        Symbol {
            y: 1
            name: "exclamationmark.triangle.fill"
            size: 12
            color: Theme.warning
        }
        Label {
            width: parent.width - 22
            text: card.topic
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            font: Theme.textFont(13, Font.Medium)
            color: Theme.foreground
        }
    }
    Row {
        spacing: Theme.spacing24
        TimeRange {
            title: "First instance"
            range: card.first
        }
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "arrow.right"
            size: 12
            color: Theme.textMuted
        }
        TimeRange {
            title: "Repeated at"
            range: card.second
        }
    }
}
