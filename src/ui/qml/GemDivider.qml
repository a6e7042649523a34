import QtQuick
import Zuvo

/// A row of gems between two blocks of a page: decoration, which nothing is told of.
Item {
    implicitWidth: row.implicitWidth
    implicitHeight: 16
    opacity: 0.4

    Row {
        id: row
        anchors.centerIn: parent
        spacing: Theme.spacing12
        Repeater {
            model: 8
            PixelGemView {
                required property int index
                size: 10
                color: Theme.chapterGems[index % Theme.chapterGems.length]
            }
        }
    }
}
