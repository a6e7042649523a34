import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The common ground of the flow's pages: a title, and what the page holds beneath it.
FocusScope {
    id: frame

    required property MineViewModel flow
    property string title: ""
    default property alias content: column.data

    Column {
        id: column
        x: Theme.spacing32
        y: Theme.spacing32
        width: parent.width - 2 * Theme.spacing32
        spacing: Theme.spacing16
        Label {
            text: frame.title
            font: Theme.title()
            color: Theme.foreground
        }
    }
}
