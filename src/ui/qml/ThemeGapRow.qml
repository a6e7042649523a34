import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// A theme of the footage that the cut leaves out.
Rectangle {
    id: row

    property string theme: ""

    height: gapLabel.implicitHeight + Theme.spacing16
    radius: 6
    color: Theme.faded(Theme.muted, 0.3)
    Symbol {
        x: Theme.spacing12
        anchors.verticalCenter: parent.verticalCenter
        name: "circle.fill"
        size: 6
        color: Theme.accent
    }
    Label {
        id: gapLabel
        x: 28
        y: Theme.spacing8
        width: parent.width - x - Theme.spacing12
        text: row.theme
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        font: Theme.caption2()
        color: Theme.foreground
    }
}
