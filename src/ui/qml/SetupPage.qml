import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Zuvo

/// "Into the Mine": where the footage comes from, and how it is mined.
FocusScope {
    id: page

    required property MineViewModel flow
    property bool isDropTargeted: false

    // On a narrow page the right part gives way.
    readonly property bool isWide: width >= 800
    readonly property real gutter: isWide ? Theme.spacing24 : Theme.spacing16
    readonly property real rightWidth: isWide ? 376 : 320
    readonly property bool hasRoomToSpare: height >= 800

    SetupPageModel {
        id: setup
        flow: page.flow
    }
    FilePicker {
        id: picker
        objectName: "filePicker"
        filters: setup.fileFilters
        onChosen: urls => setup.addChosenFiles(urls)
    }

    FlowScroll {
        id: left
        objectName: "setupLeft"
        width: (rule.visible ? rule.x - page.gutter : page.width - Theme.spacing32)
        height: page.height
        columnX: Theme.spacing32
        columnWidth: width - Theme.spacing32
        columnSpacing: Theme.spacing20

        Label {
            text: "Into the Mine"
            font: Theme.title(28)
            color: Theme.foreground
        }
        Row {
            id: tabs
            spacing: Theme.spacing8
            SourceTab {
                objectName: "filesTab"
                text: "Drop Files"
                iconName: "doc.badge.plus"
                isChosen: setup.isFromFiles
                onClicked: setup.chooseFiles()
            }
            SourceTab {
                objectName: "resolveTab"
                text: "DaVinci Resolve"
                iconName: "film"
                isChosen: !setup.isFromFiles
                onClicked: setup.chooseResolve()
            }
        }
        RecentMines {
            objectName: "recentMines"
            width: parent.width
            visible: setup.recentMines.count > 0
            model: setup
        }
        Item {
            id: dropZone
            objectName: "dropZone"
            width: parent.width
            height: Math.max(232, left.height - left.inset - left.inset - y)
            visible: setup.isFromFiles
            opacity: visible ? 1 : 0
            Behavior on opacity { SourceChange { } }
            // The rows may need more than the free height.
            implicitHeight: height
            Binding on height {
                when: setup.hasFiles
                value: Math.max(populated.implicitHeight, left.height - 2 * left.inset - dropZone.y)
            }
            DropArea {
                objectName: "dropArea"
                anchors.fill: parent
                keys: ["text/uri-list"]
                onContainsDragChanged: page.isDropTargeted = containsDrag
                onDropped: drop => {
                    drop.accept(Qt.CopyAction);
                    setup.handleDrop(drop.urls);
                }
            }
            // Around the files, while more are held over them.
            DropFrame {
                objectName: "dropFrame"
                anchors.fill: parent
                anchors.margins: -Theme.spacing12
                anchors.topMargin: -Theme.spacing8
                isTargeted: true
                visible: setup.hasFiles && opacity > 0
                opacity: page.isDropTargeted ? 1 : 0
                Behavior on opacity { NumberAnimation { duration: 200; easing.type: Easing.InOutQuad } }
            }
            EmptyDropZone {
                id: emptyZone
                objectName: "emptyDropZone"
                anchors.fill: parent
                visible: !setup.hasFiles
                isTargeted: page.isDropTargeted
                onBrowse: picker.open()
            }
            PopulatedDropZone {
                id: populated
                objectName: "populatedDropZone"
                width: parent.width
                visible: setup.hasFiles
                model: setup
                seenFrom: left.contentY - left.inset - dropZone.y
                seenTo: seenFrom + left.height
                onBrowse: picker.open()
            }
        }
        ConnectionCard {
            objectName: "connectionCard"
            width: parent.width
            visible: !setup.isFromFiles
            opacity: visible ? 1 : 0
            Behavior on opacity { SourceChange { } }
            model: setup
        }
        Column {
            width: parent.width
            spacing: Theme.spacing8
            visible: !setup.isFromFiles && setup.isConnected
            opacity: visible ? 1 : 0
            Behavior on opacity { SourceChange { } }
            SectionLabel { text: "TIMELINE" }
            Label {
                width: parent.width
                visible: !setup.hasTimelines
                text: "No timelines found"
                font: Theme.body()
                color: Theme.textMuted
            }
            MenuPicker {
                objectName: "timelinePicker"
                width: parent.width
                visible: setup.hasTimelines
                label: "Timeline"
                model: setup.timelineRows
                chosenRow: setup.timelineRow
                otherText: setup.timelineName
                onChosen: row => setup.chooseTimeline(row)
            }
        }
        SourcePreview {
            objectName: "sourcePreview"
            width: parent.width
            visible: !setup.isFromFiles && setup.isConnected && setup.timelineName !== ""
            opacity: visible ? 1 : 0
            Behavior on opacity { SourceChange { } }
            name: setup.timelineName
        }
    }

    Rectangle {
        id: rule
        visible: setup.sourceReady
        x: page.width - Theme.spacing32 - page.rightWidth - page.gutter - width
        y: Theme.spacing32
        width: Hairline.width(Screen.devicePixelRatio)
        height: page.height - 2 * Theme.spacing32
        color: Theme.faded(Theme.border, 0.15)
    }

    FlowScroll {
        id: right
        objectName: "setupRight"
        visible: setup.sourceReady
        x: rule.x + rule.width
        width: page.width - x
        height: page.height
        columnX: page.gutter
        columnWidth: page.rightWidth
        columnSpacing: Theme.spacing20

        ModePicker {
            width: parent.width
            model: setup
        }
        Column {
            width: parent.width
            spacing: Theme.spacing8
            SectionLabel { text: "LANGUAGE" }
            MenuPicker {
                objectName: "languagePicker"
                width: parent.width
                label: "Language"
                model: setup.languages
                chosenRow: setup.language
                onChosen: row => setup.chooseLanguage(row)
            }
        }
        Column {
            width: parent.width
            Item {
                width: parent.width
                implicitHeight: targetLabel.implicitHeight
                SectionLabel {
                    anchors.verticalCenter: parent.verticalCenter
                    text: "TARGET LENGTH"
                }
                Label {
                    id: targetLabel
                    objectName: "targetText"
                    anchors.right: parent.right
                    text: setup.targetText
                    font: Theme.textFont(13, Font.DemiBold)
                    color: Theme.accent
                }
            }
            Item { width: 1; height: Theme.spacing8 }
            FlowSlider {
                objectName: "lengthSlider"
                width: parent.width
                label: "Target length"
                valueText: setup.targetText
                from: 1
                to: 30
                stepSize: 1
                snapMode: FlowSlider.SnapAlways
                value: setup.targetMinutes
                onChosen: place => setup.chooseTargetMinutes(place)
            }
            Item { width: 1; height: Theme.spacing8 }
            Item {
                width: parent.width
                implicitHeight: shortest.implicitHeight
                Label {
                    id: shortest
                    text: "1 min"
                    font: Theme.textFont(10)
                    color: Theme.textMuted
                }
                Label {
                    anchors.right: parent.right
                    text: "30 min"
                    font: Theme.textFont(10)
                    color: Theme.textMuted
                }
            }
        }
        GemDivider {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: page.hasRoomToSpare
        }
        Rectangle {
            width: parent.width
            height: 44
            radius: Theme.radiusSm
            color: Theme.faded(Theme.accent, 0.04)
            border.width: Hairline.width(Screen.devicePixelRatio)
            border.color: Theme.faded(Theme.accent, 0.1)
            Symbol {
                id: diamond
                x: Theme.spacing16
                anchors.verticalCenter: parent.verticalCenter
                name: "diamond.fill"
                size: 12
                color: Theme.faded(Theme.accent, 0.8)
            }
            Label {
                anchors.left: diamond.right
                anchors.leftMargin: Theme.spacing8
                anchors.verticalCenter: parent.verticalCenter
                text: "Estimated cost:"
                font: Theme.textFont(12)
                color: Theme.textMuted
            }
            Label {
                objectName: "creditsText"
                anchors.right: parent.right
                anchors.rightMargin: Theme.spacing16
                anchors.verticalCenter: parent.verticalCenter
                text: setup.creditsText
                font: Theme.textFont(13, Font.DemiBold)
                color: Theme.foreground
            }
        }
        FlowActionButton {
            id: actionButton
            objectName: "actionButton"
            width: parent.width
            isAvailable: setup.actionEnabled
            fill: setup.isAudit ? Theme.gemAmethyst : Theme.accent
            text: setup.actionText
            symbolName: "arrow.right"
            isSymbolLast: true
            onClicked: setup.act()
        }
    }

    // The keyboard stands on what comes next: to name the footage, or to go on with it.
    function placeKeyboard() {
        if (setup.isFromFiles && !setup.hasFiles)
            emptyZone.forceActiveFocus(Qt.OtherFocusReason);
        else if (setup.actionEnabled)
            actionButton.forceActiveFocus(Qt.OtherFocusReason);
    }
    readonly property bool hasFiles: setup.hasFiles
    onHasFilesChanged: {
        if (activeFocus || Window.activeFocusItem === null)
            placeKeyboard();
    }
    Component.onCompleted: placeKeyboard()
}
