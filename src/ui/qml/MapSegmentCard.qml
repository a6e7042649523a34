import QtQuick
import Zuvo

/// A moment on the map. What can be done with it shows while it is pointed at or has the keyboard.
FocusScope {
    id: card

    required property int gem
    required property string transcript
    required property string length
    required property int position
    required property bool isPlaying
    readonly property color chapterColor: gem < 0 ? Theme.textMuted : Theme.chapterGems[gem]
    readonly property bool isHovered: hover.hovered || activeFocus
    rotation: 0 // as it lies on the board

    /// Whether any of it can be seen. What cannot is not drawn, but can have the keyboard.
    required property bool isInSight
    property real sharpness: 1 ///< pixels in a unit of its picture
    property bool isSmooth: true
    property real lineWidth: 1
    property bool wasInSight: false
    onIsInSightChanged: if (isInSight) wasInSight = true
    Component.onCompleted: if (isInSight) wasInSight = true

    signal played()
    signal removed()

    width: 92
    height: 72
    activeFocusOnTab: true

    Accessible.role: Accessible.ListItem
    Accessible.name: position + ". " + transcript
    Accessible.focusable: true

    Keys.onPressed: event => {
        if (event.isAutoRepeat)
            return;
        if (event.key === Qt.Key_Space || event.key === Qt.Key_K || event.key === Qt.Key_Return) {
            card.played();
            event.accepted = true;
        } else if (event.key === Qt.Key_Delete) {
            card.removed();
            event.accepted = true;
        }
    }

    HoverHandler { id: hover; cursorShape: Qt.OpenHandCursor }
    // As few pieces as the look allows, none before they are seen and none drawn out of sight: hundreds of cards follow
    // the board.
    Loader {
        anchors.fill: parent
        active: card.wasInSight
        visible: card.isInSight
        sourceComponent: Item {
            Image {
                // With the reach of its shadow.
                x: -15
                y: -13
                width: card.width + 30
                height: card.height + 30
                smooth: card.isSmooth
                source: "image://mapcards/" + [
                    card.width + "x" + card.height, Theme.radiusXs, card.lineWidth, card.sharpness,
                    card.digits(Qt.tint(Theme.cardBg, Theme.faded(Theme.foreground, 0.04))), card.digits(Theme.cardBg),
                    card.digits(Qt.tint(Theme.cardBg, card.isPlaying ? Theme.faded(card.chapterColor, 0.6)
                                                                     : Theme.faded(Theme.border, 0.4))),
                    card.digits(card.chapterColor), card.digits(Theme.faded(card.chapterColor, card.isPlaying ? 0.12 : 0))
                ].join("/")
            }
            Text {
                x: 11
                y: 6
                width: parent.width - x - 6
                text: card.transcript
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                maximumLineCount: 3
                elide: Text.ElideRight
                lineHeight: 1.15
                font: Theme.textFont(9, Font.Normal)
                color: Theme.faded(Theme.foreground, 0.85)
            }
            Text {
                x: 11
                anchors.bottom: parent.bottom
                anchors.bottomMargin: 6
                text: card.length
                font: Theme.textFont(8, Font.Normal)
                color: Theme.faded(Theme.textMuted, 0.5)
            }
        }
    }
    /// A colour as the provider of the pictures reads it.
    function digits(color) { return String(color).slice(1); }

    Rectangle {
        anchors.fill: parent
        anchors.margins: -2
        radius: Theme.radiusXs + 2
        color: "transparent"
        border.width: 2
        border.color: Theme.torchGlow
        visible: card.activeFocus && !hover.hovered
    }
    Loader {
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 4
        active: card.isHovered
        sourceComponent: Row {
            spacing: 4
            SymbolButton {
                objectName: "mapPlayButton"
                implicitWidth: 20
                implicitHeight: 20
                leftPadding: 0
                rightPadding: 0
                ringRadius: 5
                text: card.isPlaying ? "Stop" : "Preview"
                showsText: false
                symbolName: card.isPlaying ? "stop.fill" : "play.fill"
                symbolSize: 9
                ink: Theme.accent
                hoverInk: Theme.accentHover
                fill: Theme.faded(Theme.background, 0.85)
                onClicked: card.played()
            }
            SymbolButton {
                objectName: "mapRemoveButton"
                implicitWidth: 20
                implicitHeight: 20
                leftPadding: 0
                rightPadding: 0
                ringRadius: 5
                text: "Remove"
                showsText: false
                symbolName: "trash"
                symbolSize: 9
                ink: Theme.faded(Theme.error, 0.6)
                hoverInk: Theme.error
                fill: Theme.faded(Theme.background, 0.85)
                onClicked: card.removed()
            }
        }
    }
}
