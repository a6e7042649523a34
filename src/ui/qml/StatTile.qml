import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// A number of the story with its symbol.
SolidCard {
    id: tile

    property string symbolName: ""
    property string label: ""
    property string value: ""
    property var shades: Theme.stepGradient(0) ///< two colours

    padding: Theme.spacing16

    Rectangle {
        width: 32
        height: 32
        radius: Theme.radiusXs
        gradient: Gradient {
            GradientStop { position: 0; color: Theme.faded(tile.shades[0], 0.3) }
            GradientStop { position: 1; color: Theme.faded(tile.shades[1], 0.3) }
        }
        Symbol {
            anchors.centerIn: parent
            name: tile.symbolName
            size: 14
            color: tile.shades[0]
        }
    }
    Label {
        objectName: "tileValue"
        width: parent.width
        topPadding: Theme.spacing16
        text: tile.value
        textFormat: Text.PlainText
        elide: Text.ElideRight
        font: Theme.textFont(22, Font.DemiBold)
        color: Theme.foreground
        Accessible.name: tile.value + " " + tile.label
    }
    Label {
        width: parent.width
        text: tile.label
        elide: Text.ElideRight
        font: Theme.caption2()
        color: Theme.textMuted
        Accessible.ignored: true
    }
}
