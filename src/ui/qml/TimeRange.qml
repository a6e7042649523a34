import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// A stretch of the interview and what it is.
Column {
    id: range

    property alias title: titleLabel.text
    property alias titleColor: titleLabel.color
    property string range: ""

    spacing: Theme.spacing4

    Label {
        id: titleLabel
        font: Theme.textFont(10, Font.Medium)
        color: Theme.textMuted
    }
    Label {
        text: range.range
        textFormat: Text.PlainText
        font: Theme.mono(11)
        color: Theme.foreground
    }
}
