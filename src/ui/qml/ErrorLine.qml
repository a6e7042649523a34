import QtQuick
import Zuvo

/// What went wrong, in the failure's own words.
Row {
    id: line

    property string text: ""
    property real maximumWidth: 560

    visible: text !== ""
    spacing: Theme.spacing8
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Symbol {
        y: 1
        name: line.text !== "" ? "exclamationmark.triangle.fill" : ""
        size: 14
        color: Theme.error
    }
    // No label, which would be told beside the line.
    Text {
        width: Math.min(implicitWidth, line.maximumWidth - 17 - line.spacing)
        text: line.text
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        maximumLineCount: 8
        elide: Text.ElideRight
        font: Theme.subheadline()
        color: Theme.error
    }
}
