import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// A part of a page under its heading.
Column {
    id: section

    property alias title: titleLabel.text
    /// At the right of the heading; empty for none.
    property alias note: noteLabel.text
    property alias contentSpacing: body.spacing
    default property alias content: body.data

    width: parent ? parent.width : 0
    spacing: Theme.spacing12

    Item {
        width: section.width
        height: titleLabel.implicitHeight
        SectionLabel {
            id: titleLabel
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Label {
            id: noteLabel
            anchors.right: parent.right
            anchors.baseline: titleLabel.baseline
            visible: text !== ""
            font: Theme.caption2()
            color: Theme.textMuted
        }
    }
    Column {
        id: body
        width: section.width
    }
}
