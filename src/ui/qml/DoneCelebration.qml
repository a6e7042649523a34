import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Gems that burst from the pickaxe, and what they celebrate.
Column {
    id: celebration

    property string momentsLine: ""
    /// The gems have spread out.
    property bool showConfetti: false
    /// 0 gathered, 1 spread; on the way a little beyond.
    property real spread: showConfetti ? 1 : 0

    Behavior on spread {
        SpringAnimation { spring: 3; damping: 0.22; epsilon: 0.002 }
    }

    // Places from the middle of the area, in units; a colour is a place in the list of gems.
    readonly property var gems: [
        { "x": -196, "y": -4, "size": 22, "color": 0 }, { "x": -158, "y": -38, "size": 14, "color": 1 },
        { "x": -150, "y": 32, "size": 16, "color": 2 }, { "x": -112, "y": -12, "size": 18, "color": 3 },
        { "x": -84, "y": 36, "size": 12, "color": 4 }, { "x": -76, "y": -44, "size": 16, "color": 5 },
        { "x": 78, "y": -42, "size": 14, "color": 0 }, { "x": 88, "y": 34, "size": 18, "color": 1 },
        { "x": 114, "y": -8, "size": 12, "color": 2 }, { "x": 148, "y": -36, "size": 20, "color": 3 },
        { "x": 156, "y": 28, "size": 14, "color": 4 }, { "x": 198, "y": -2, "size": 18, "color": 5 }
    ]
    readonly property var sparks: [
        { "x": -221, "y": -30, "size": 3, "color": 0 }, { "x": -176, "y": -18, "size": 4, "color": 3 },
        { "x": -170, "y": 17, "size": 5, "color": 4 }, { "x": -128, "y": -48, "size": 3, "color": 0 },
        { "x": -120, "y": 22, "size": 4, "color": 0 }, { "x": -55, "y": -13, "size": 5, "color": 1 },
        { "x": 61, "y": 16, "size": 3, "color": 0 }, { "x": 130, "y": -49, "size": 5, "color": 4 },
        { "x": 135, "y": 20, "size": 3, "color": 2 }, { "x": 178, "y": -12, "size": 4, "color": 0 },
        { "x": 184, "y": 14, "size": 5, "color": 3 }, { "x": 227, "y": 26, "size": 5, "color": 1 }
    ]
    /// How far from the middle things stand before they spread, as a share of their places.
    readonly property real gathered: 0.18
    readonly property real reach: gathered + (1 - gathered) * spread

    Item {
        id: area
        readonly property real middleX: width / 2
        readonly property real middleY: height / 2
        width: parent.width
        height: 120

        Repeater {
            model: celebration.sparks
            Rectangle {
                required property var modelData
                x: area.middleX + modelData.x * celebration.reach - width / 2
                y: area.middleY + modelData.y * celebration.reach - height / 2
                width: modelData.size
                height: width
                radius: width / 2
                scale: 0.5 + 0.5 * celebration.spread
                color: Theme.faded(Theme.chapterGems[modelData.color], 0.7)
            }
        }
        Repeater {
            model: celebration.gems
            PixelGemView {
                required property var modelData
                x: area.middleX + modelData.x * celebration.reach - size / 2
                y: area.middleY + modelData.y * celebration.reach - size / 2
                size: modelData.size
                color: Theme.chapterGems[modelData.color]
                scale: 0.5 + 0.5 * celebration.spread
            }
        }
        PixelPickaxeView {
            anchors.centerIn: parent
            size: 40
            scale: 0.5 + 0.6 * celebration.spread
        }
    }
    Label {
        width: parent.width
        topPadding: Theme.spacing8
        horizontalAlignment: Text.AlignHCenter
        text: "You struck gold"
        font: Theme.title()
        color: Theme.foreground
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Label {
        width: parent.width
        topPadding: Theme.spacing6
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: "The story was always there. You just needed to dig."
        font: Theme.body()
        color: Theme.textMuted
    }
    Label {
        objectName: "momentsLine"
        width: parent.width
        visible: text !== ""
        topPadding: Theme.spacing12
        horizontalAlignment: Text.AlignHCenter
        text: celebration.momentsLine
        textFormat: Text.PlainText
        font: Theme.mono(12)
        color: Theme.faded(Theme.textMuted, 0.8)
    }

    Timer {
        running: true
        interval: 300
        onTriggered: celebration.showConfetti = true
    }
}
