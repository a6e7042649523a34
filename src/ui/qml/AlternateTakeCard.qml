import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// A better take of something that is in the cut.
SolidCard {
    id: card

    property string current: "" ///< range
    property string better: "" ///< range
    property string quote: "" ///< what is said in the better take
    property string reason: ""

    padding: Theme.spacing16
    spacing: Theme.spacing12
    cornerRadius: Theme.radiusSm
    Row {
        spacing: Theme.spacing24
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "arrow.triangle.swap"
            size: 14
            color: Theme.gemSapphire
        }
        TimeRange {
            title: "Current"
            range: card.current
        }
        TimeRange {
            title: "Better"
            titleColor: Theme.success
            range: card.better
        }
    }
    Column {
        width: parent.width
        spacing: Theme.spacing4
        Label {
            width: parent.width
            text: card.quote
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            font: Theme.caption()
            color: Theme.foreground
        }
        Label {
            width: parent.width
            text: card.reason
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            font: Theme.caption2()
            color: Theme.textMuted
        }
    }
}
