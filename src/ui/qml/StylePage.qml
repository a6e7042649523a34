import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// "The Lantern": what the analysis is to look for.
FocusScope {
    id: page

    required property MineViewModel flow
    readonly property bool hasRoomToSpare: height >= (style.isMagicMode ? 800 : style.showSliders ? 1250 : 1000)

    StylePageModel {
        id: style
        flow: page.flow
    }

    Keys.onPressed: event => scrollKeys.take(event)
    ScrollKeys {
        id: scrollKeys
        flickable: scroll
    }
    FlowScroll {
        id: scroll
        objectName: "styleScroll"
        onMovementStarted: scrollKeys.stop()
        anchors.fill: parent
        columnWidth: Math.min(816, width - 2 * Theme.spacing32)
        columnX: (width - columnWidth) / 2
        columnSpacing: Theme.spacing24

        Column {
            width: parent.width
            spacing: Theme.spacing8
            Label {
                text: "The Lantern"
                font: Theme.title(28)
                color: Theme.foreground
            }
            Label {
                width: parent.width
                text: "Light the way — tell the AI what to look for"
                elide: Text.ElideRight
                font: Theme.textFont(14)
                color: Theme.textMuted
            }
        }
        Column {
            id: directorNotesSection
            width: parent.width
            spacing: Theme.spacing12
            Label {
                text: "Every interview has a story waiting to be found."
                font: Theme.textFont(13)
                color: Theme.faded(Theme.textMuted, 0.7)
            }
            Row {
                spacing: Theme.spacing12
                Symbol {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "megaphone.fill"
                    size: 14
                    color: Theme.accent
                }
                Label {
                    text: "What are you looking for?"
                    font: Theme.textFont(16, Font.DemiBold)
                    color: Theme.foreground
                }
            }
            NativeTextEditor {
                width: parent.width
                label: "What are you looking for?"
                placeholder: "e.g. \"Focus on emotional moments about family\" or \"Keep it upbeat, skip the political "
                             + "stuff\" or \"Find the three strongest anecdotes\""
                text: style.directorNotes
                onEdited: text => style.directorNotes = text
            }
        }
        MagicModeCard {
            objectName: "magicModeCard"
            width: parent.width
            isOn: style.isMagicMode
            onClicked: style.toggleMagicMode()
        }
        // Fades and closes; nothing in it can be reached meanwhile.
        Item {
            id: fineTuneSection
            objectName: "fineTuneSection"
            readonly property bool isWanted: !style.isMagicMode
            property real openness: isWanted ? 1 : 0
            width: parent.width
            height: fineTune.height * openness
            visible: openness > 0
            opacity: openness
            enabled: isWanted
            clip: openness < 1
            Behavior on openness { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }
            Column {
                id: fineTune
                width: parent.width
                spacing: Theme.spacing12
                SymbolHeader {
                    symbolName: "slider.horizontal.3"
                    symbolSize: 11
                    tracking: 1.5
                    text: "FINE-TUNE"
                    symbolColor: Theme.textMuted
                }
                StyleGuideView {
                    width: parent.width
                    model: style
                }
            }
        }
        GemDivider {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: page.hasRoomToSpare
        }
        Rectangle {
            objectName: "estimatedOutputCard"
            width: parent.width
            height: 48
            radius: Theme.radiusMd
            color: Theme.surface
            Row {
                x: Theme.spacing20
                anchors.verticalCenter: parent.verticalCenter
                spacing: Theme.spacing8
                Symbol {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "sparkles"
                    size: 11
                    color: Theme.torchGlow
                }
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    text: "Estimated output:"
                    font: Theme.textFont(12)
                    color: Theme.textMuted
                }
                Label {
                    objectName: "estimatedOutput"
                    anchors.verticalCenter: parent.verticalCenter
                    text: style.estimatedOutput
                    font: Theme.textFont(12, Font.DemiBold)
                    color: Theme.foreground
                }
            }
        }
        Item {
            width: parent.width
            implicitHeight: 48
            PlainButton {
                id: backButton
                objectName: "backButton"
                anchors.verticalCenter: parent.verticalCenter
                height: 48
                text: "Back"
                rightPadding: Theme.spacing12
                onClicked: style.goBack()
                contentItem: Row {
                    spacing: Theme.spacing8
                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "arrow.left"
                        size: 12
                        color: back.color
                    }
                    Text {
                        id: back
                        anchors.verticalCenter: parent.verticalCenter
                        text: backButton.text
                        font: Theme.textFont(13, Font.Medium)
                        color: backButton.hovered ? Theme.foreground : Theme.textMuted
                    }
                }
            }
            FlowActionButton {
                objectName: "actionButton"
                anchors.right: parent.right
                focus: true
                text: style.mainText
                symbolName: style.isMagicMode ? "wand.and.stars" : ""
                fill: style.isMagicMode ? Theme.torchGlow : Theme.accent
                ink: style.isMagicMode ? Theme.background : "white"
                onClicked: style.startMining()
            }
        }
    }
}
