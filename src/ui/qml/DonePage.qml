import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// "Daylight": what the mine came to, and everything that is done with it.
FocusScope {
    id: page

    required property MineViewModel flow
    readonly property DonePageModel model: DonePageModel { flow: page.flow }
    /// The width of each of `count` items of a row.
    function share(width, count, gap) { return (width - (count - 1) * gap) / count; }

    component Section: Column {
        id: section
        property alias title: sectionTitle.text
        default property alias content: body.data
        property alias contentSpacing: body.spacing
        width: parent ? parent.width : 0
        spacing: Theme.spacing12
        SectionLabel {
            id: sectionTitle
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Column {
            id: body
            width: section.width
        }
    }

    PageGround {
        anchors.fill: parent
        depth: 0.2
    }
    ScrollPage {
        objectName: "donePage"
        anchors.fill: parent
        focus: true
        columnWidth: 640
        topMargin: Theme.spacing16

        Column {
            id: column
            width: parent.width
            spacing: Theme.spacing24

            DoneCelebration {
                objectName: "celebration"
                width: column.width
                momentsLine: page.model.momentsLine
            }

            TintCard {
                objectName: "timeSavedCard"
                width: column.width
                visible: page.model.hasSavedTime
                Row {
                    spacing: Theme.spacing8
                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "clock.arrow.circlepath"
                        size: 13
                        color: Theme.accent
                    }
                    SectionLabel {
                        anchors.verticalCenter: parent.verticalCenter
                        text: "TIME SAVED"
                    }
                }
                Label {
                    objectName: "savedTime"
                    topPadding: Theme.spacing8
                    text: page.model.savedTime
                    font: Theme.title()
                    color: Theme.foreground
                }
                Label {
                    topPadding: Theme.spacing2
                    text: "of manual logging and paper editing"
                    font: Theme.caption()
                    color: Theme.textMuted
                }
                Label {
                    objectName: "savedTimeBasis"
                    topPadding: Theme.spacing8
                    text: page.model.savedTimeBasis
                    font: Theme.textFont(10, Font.Normal)
                    color: Theme.faded(Theme.textMuted, 0.5)
                }
            }

            Column {
                objectName: "buildBlock"
                width: column.width
                spacing: Theme.spacing12
                PrimaryButtonStyle {
                    objectName: "buildButton"
                    width: parent.width
                    text: page.model.buildText
                    cornerRadius: Theme.radiusMd
                    shadowRadius: 16
                    opacity: page.model.isBuilding ? 0.7 : 1
                    onClicked: page.model.build()
                }
                Label {
                    objectName: "buildStatus"
                    width: parent.width
                    visible: text !== ""
                    horizontalAlignment: Text.AlignHCenter
                    text: page.model.buildStatus
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    font: Theme.textFont(12, Font.Medium)
                    color: page.model.isBuildStatusBad ? Theme.accent : Theme.success
                    Accessible.role: page.model.isBuildStatusBad ? Accessible.AlertMessage : Accessible.StaticText
                    Accessible.name: text
                }
            }

            TintCard {
                id: magicCard
                objectName: "magicExplanation"
                width: column.width
                visible: page.model.isMagicMode
                tint: Theme.torchGlow
                padding: Theme.spacing20
                Item {
                    width: parent.width
                    height: magicText.height
                    Symbol {
                        y: 1
                        name: "wand.and.stars"
                        size: 18
                        color: Theme.torchGlow
                    }
                    Column {
                        id: magicText
                        x: 36
                        width: parent.width - x
                        spacing: Theme.spacing4
                        Label {
                            text: "The Canary found:"
                            font: Theme.textFont(13, Font.DemiBold)
                            color: Theme.foreground
                        }
                        Label {
                            width: parent.width
                            text: page.model.magicExplanation
                            wrapMode: Text.Wrap
                            lineHeight: 1.2
                            font: Theme.caption()
                            color: Theme.textMuted
                        }
                    }
                }
            }

            Section {
                objectName: "storyPreview"
                width: column.width
                visible: page.model.acts.length > 0
                title: "STORY STRUCTURE"
                SolidCard {
                    width: parent.width
                    padding: Theme.spacing20
                    spacing: Theme.spacing24
                    Repeater {
                        model: page.model.acts
                        ActRow {
                            required property var modelData
                            width: parent ? parent.width : 0
                            pageModel: page.model
                            name: modelData.name
                            chapters: modelData.chapters
                            gems: modelData.gems
                        }
                    }
                }
            }

            Section {
                objectName: "statsCard"
                width: column.width
                visible: page.model.hasResults
                title: "QUICK STATS"
                Row {
                    id: tiles
                    width: parent.width
                    spacing: Theme.spacing12
                    Repeater {
                        model: page.model.stats
                        StatTile {
                            required property var modelData
                            required property int index
                            width: page.share(tiles.width, 4, tiles.spacing)
                            symbolName: modelData.symbol
                            label: modelData.label
                            value: modelData.value
                            shades: Theme.stepGradient(index)
                        }
                    }
                }
            }

            Section {
                objectName: "mineVersionHistory"
                width: column.width
                visible: page.model.versions.length > 0
                title: "MINE HISTORY"
                contentSpacing: Theme.spacing8
                Repeater {
                    model: page.model.versions
                    MineVersionRow {
                        required property var modelData
                        width: parent ? parent.width : 0
                        version: modelData.version
                        segments: modelData.segments
                        date: modelData.date
                        isCurrent: modelData.isCurrent
                    }
                }
            }

            Section {
                objectName: "exportOptions"
                width: column.width
                title: "EXPORT"
                contentSpacing: Theme.spacing12
                Row {
                    id: plainRow
                    width: parent.width
                    spacing: Theme.spacing12
                    Repeater {
                        model: page.model.plainExports
                        SecondaryButtonStyle {
                            required property var modelData
                            required property int index
                            objectName: "exportButton" + index
                            width: page.share(plainRow.width, 3, plainRow.spacing)
                            implicitHeight: 44
                            cornerRadius: Theme.radiusSm
                            leftPadding: Theme.spacing12
                            rightPadding: Theme.spacing12
                            text: modelData.label
                            symbolName: modelData.symbol
                            symbolSize: 14
                            textSize: 13
                            onClicked: page.model.openExport(index)
                        }
                    }
                }
                SecondaryButtonStyle {
                    objectName: "exportFolderButton"
                    width: parent.width
                    implicitHeight: 44
                    cornerRadius: Theme.radiusSm
                    text: "Open Export Folder"
                    symbolName: "folder"
                    symbolSize: 14
                    textSize: 13
                    onClicked: page.model.openExportFolder()
                }
                Row {
                    id: storyRow
                    width: parent.width
                    spacing: Theme.spacing12
                    Repeater {
                        model: page.model.storyExports
                        StoryExportButton {
                            required property var modelData
                            required property int index
                            objectName: "storyExportButton" + index
                            width: page.share(storyRow.width, 3, storyRow.spacing)
                            text: modelData.label
                            symbolName: modelData.symbol
                            line: modelData.line
                            onClicked: page.model.exportStory(index)
                        }
                    }
                }
            }

            Column {
                objectName: "rateSection"
                width: column.width
                spacing: Theme.spacing12
                Label {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    text: "How'd we do?"
                    font: Theme.subheadline()
                    color: Theme.faded(Theme.textMuted, 0.7)
                }
                Row {
                    anchors.horizontalCenter: parent.horizontalCenter
                    spacing: Theme.spacing12
                    Repeater {
                        model: 2
                        RatingButton {
                            required property int index
                            readonly property var row: page.model.ratings[index]
                            objectName: "ratingButton" + index
                            text: row.label
                            symbolName: row.symbol
                            isChosen: row.isChosen
                            ink: row.isGood ? Theme.success : Theme.accent
                            tintOpacity: row.isGood ? 0.08 : 0.06
                            onClicked: page.model.rate(index)
                        }
                    }
                }
            }

            Column {
                objectName: "navigationButtons"
                width: column.width
                spacing: Theme.spacing12
                Row {
                    id: backRow
                    width: parent.width
                    spacing: Theme.spacing12
                    SecondaryButtonStyle {
                        objectName: "backToReviewButton"
                        width: page.share(backRow.width, 2, backRow.spacing)
                        text: "Review Segments"
                        symbolName: "list.bullet"
                        onClicked: page.flow.backToReview()
                    }
                    SecondaryButtonStyle {
                        objectName: "restyleButton"
                        width: page.share(backRow.width, 2, backRow.spacing)
                        text: "Re-mine"
                        symbolName: "paintbrush"
                        onClicked: page.flow.restyle()
                    }
                }
                SecondaryButtonStyle {
                    objectName: "startOverButton"
                    width: parent.width
                    text: "Mine another story"
                    onClicked: page.flow.resetFlow()
                }
                StyledButton {
                    objectName: "startFreshButton"
                    anchors.horizontalCenter: parent.horizontalCenter
                    implicitHeight: 36
                    cornerRadius: Theme.radiusSm
                    text: "Clear caches & start fresh"
                    textSize: 12
                    textWeight: Font.Normal
                    symbolName: "trash"
                    symbolSize: 12
                    Accessible.description: "Removes what was kept of all mines but their paid transcripts"
                    textColor: hovered ? Theme.foreground : Theme.textMuted
                    onClicked: page.flow.startFresh()
                }
            }
        }
    }
}
