import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// One property of the style, between two words.
Column {
    id: row

    required property string label
    required property string low
    required property string high
    required property real value
    required property string valueText
    property alias sliderName: slider.objectName

    signal chosen(real place)

    Item {
        width: parent.width
        implicitHeight: name.implicitHeight
        Label {
            id: name
            text: row.label
            font: Theme.textFont(11, Font.Medium)
            color: Theme.foreground
        }
        Label {
            anchors.right: parent.right
            text: row.valueText
            font: Theme.textFont(10)
            color: Theme.textMuted
        }
    }
    Item { width: 1; height: Theme.spacing6 }
    FlowSlider {
        id: slider
        width: parent.width
        label: row.label
        valueText: row.valueText
        from: 0
        to: 1
        stepSize: 0.05 // of the arrow keys; the pointer moves it freely
        value: row.value
        onChosen: place => row.chosen(place)
    }
    Item { width: 1; height: Theme.spacing4 }
    Item {
        width: parent.width
        implicitHeight: lowLabel.implicitHeight
        Label {
            id: lowLabel
            text: row.low
            font: Theme.textFont(9)
            color: Theme.faded(Theme.textMuted, 0.7)
        }
        Label {
            anchors.right: parent.right
            text: row.high
            font: Theme.textFont(9)
            color: Theme.faded(Theme.textMuted, 0.7)
        }
    }
}
