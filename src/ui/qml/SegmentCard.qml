import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Zuvo

/// One moment of the story. It opens to what can be done with it.
Item {
    id: card

    required property double segmentId
    required property int position        ///< from 1
    required property string times
    required property string length
    required property string chapter
    required property int gem             ///< -1 without a chapter
    required property string transcript
    required property string translation
    required property bool isExpanded
    required property bool isPlaying
    property RowListModel captionWords: null ///< while it plays
    property string captionText: ""
    property real captionProgress: 0
    property bool isChosen: false         ///< by the keyboard
    property bool isLifted: false
    readonly property color chapterColor: gem < 0 ? Theme.textMuted : Theme.chapterGems[gem]

    signal tapped()
    signal played()
    signal removed()

    implicitHeight: column.implicitHeight + 2 * Theme.spacing12

    Accessible.role: Accessible.ListItem
    Accessible.name: position + ". " + times + ", " + length + (chapter !== "" ? ", " + chapter : "") + ". " + transcript
    Accessible.focusable: true
    Accessible.focused: isChosen
    Accessible.selected: isExpanded
    Accessible.description: isExpanded ? "Open" : ""
    Accessible.onPressAction: tapped()

    SoftShadow {
        anchors.fill: parent
        visible: card.isLifted
        cornerRadius: Theme.radiusSm
    }
    CardSurface {
        anchors.fill: parent
        cornerRadius: Theme.radiusSm
        borderTop: card.isPlaying ? Theme.faded(Theme.accent, 0.35) : Theme.faded(Theme.border, 0.2)
    }
    // The stripe is the left end of a rounded card.
    Item {
        width: 3
        height: parent.height
        clip: true
        Rectangle {
            width: 2 * Theme.radiusSm
            height: parent.height
            radius: Theme.radiusSm
            color: card.chapterColor
        }
    }
    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusSm
        color: "transparent"
        border.width: 2
        border.color: Theme.torchGlow
        visible: card.isChosen
    }

    Label {
        x: Theme.spacing16
        y: Theme.spacing12
        text: card.position
        font: Theme.textFont(13, Font.DemiBold)
        color: card.chapterColor
        Accessible.ignored: true
    }
    Column {
        id: column
        x: 46
        y: Theme.spacing12
        width: parent.width - x - Theme.spacing16
        spacing: Theme.spacing6

        Item {
            width: parent.width
            height: 18
            Row {
                anchors.verticalCenter: parent.verticalCenter
                spacing: Theme.spacing12
                Label {
                    text: card.times
                    font: Theme.mono(12)
                    color: Theme.textMuted
                    Accessible.ignored: true
                }
                Label {
                    text: card.length
                    font: Theme.mono(12)
                    color: Theme.faded(Theme.textMuted, 0.7)
                    Accessible.ignored: true
                }
            }
            Rectangle {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: card.chapter !== ""
                width: Math.min(chapterLabel.implicitWidth + 16, parent.width / 2)
                height: 18
                radius: 9
                color: Theme.faded(card.chapterColor, 0.12)
                Label {
                    id: chapterLabel
                    anchors.centerIn: parent
                    width: Math.min(implicitWidth, parent.width - 16)
                    text: card.chapter
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    font: Theme.caption2()
                    color: card.chapterColor
                    Accessible.ignored: true
                }
            }
        }
        Label {
            width: parent.width
            text: card.transcript
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            lineHeight: 1.2
            font: Theme.textFont(13, Font.Normal)
            color: Theme.faded(Theme.foreground, 0.85)
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            visible: card.isExpanded && card.translation !== ""
            text: card.translation
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            lineHeight: 1.2
            font: Theme.caption()
            color: Theme.faded(Theme.textMuted, 0.7)
        }
        // What stands below is made when the card opens.
        Loader {
            width: parent.width
            active: card.isExpanded
            visible: active
            sourceComponent: Column {
                spacing: Theme.spacing12
                topPadding: Theme.spacing6
                LiveCaptionView {
                    objectName: "liveCaption"
                    visible: card.isPlaying && card.captionWords !== null && card.captionWords.count > 0
                    width: parent.width
                    words: card.captionWords
                    spoken: card.captionText
                    progress: card.captionProgress
                }
                Item {
                    width: parent.width
                    height: 32
                    SymbolButton {
                        objectName: "playButton"
                        text: card.isPlaying ? "Stop" : "Preview"
                        symbolName: card.isPlaying ? "stop.fill" : "play.fill"
                        ink: Theme.accent
                        hoverInk: Theme.accentHover
                        fill: Theme.faded(Theme.accent, hovered ? 0.16 : 0.1)
                        onClicked: card.played()
                    }
                    SymbolButton {
                        objectName: "removeButton"
                        anchors.right: parent.right
                        anchors.rightMargin: -Theme.spacing8
                        leftPadding: Theme.spacing8
                        rightPadding: Theme.spacing8
                        text: "Remove"
                        symbolName: "trash"
                        ink: Theme.faded(Theme.error, 0.7)
                        hoverInk: Theme.error
                        onClicked: card.removed()
                    }
                }
            }
        }
    }
}
