import QtQuick
import Zuvo

/// The label of a section with its symbol before it.
Row {
    id: header

    required property string symbolName
    required property string text
    property real symbolSize: 10
    property real tracking: 1.8
    property color symbolColor: Theme.faded(Theme.textMuted, 0.6)

    spacing: Theme.spacing8

    Symbol {
        anchors.verticalCenter: parent.verticalCenter
        name: header.symbolName
        size: header.symbolSize
        color: header.symbolColor
    }
    SectionLabel {
        anchors.verticalCenter: parent.verticalCenter
        text: header.text
        font: Theme.textFont(11, Font.DemiBold, header.tracking)
    }
}
