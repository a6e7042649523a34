import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// "Daylight": what the mine came to, and everything that is done with it.
FocusScope {
    id: page

    required property MineViewModel flow
    readonly property DonePageModel model: DonePageModel { flow: page.flow }

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

            TimeSavedCard {
                objectName: "timeSavedCard"
                width: column.width
                visible: page.model.hasSavedTime
                savedTime: page.model.savedTime
                basis: page.model.savedTimeBasis
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

            CanaryCard {
                objectName: "magicExplanation"
                width: column.width
                visible: page.model.isMagicMode
                explanation: page.model.magicExplanation
            }

            PageSection {
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

            PageSection {
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
                            width: (tiles.width - 3 * tiles.spacing) / 4
                            symbolName: modelData.symbol
                            label: modelData.label
                            value: modelData.value
                            shades: Theme.stepGradient(index)
                        }
                    }
                }
            }

            PageSection {
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

            ExportOptions {
                objectName: "exportOptions"
                width: column.width
                pageModel: page.model
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

            DoneNavigation {
                objectName: "navigationButtons"
                width: column.width
                flow: page.flow
            }
        }
    }
}
