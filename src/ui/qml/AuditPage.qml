import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// What an audit found: how much of the interview the cut uses, and what was left on the floor.
FocusScope {
    id: page

    required property MineViewModel flow
    readonly property AuditPageModel model: AuditPageModel { flow: page.flow }

    PageGround {
        anchors.fill: parent
        depth: 0.2
    }
    ScrollPage {
        objectName: "auditPage"
        anchors.fill: parent
        focus: true
        columnWidth: 640
        topMargin: Theme.spacing16

        Column {
            id: column
            width: parent.width
            spacing: Theme.spacing24

            Column {
                width: column.width
                PixelPickaxeView {
                    anchors.horizontalCenter: parent.horizontalCenter
                    size: 32
                }
                Label {
                    width: parent.width
                    topPadding: Theme.spacing16
                    horizontalAlignment: Text.AlignHCenter
                    text: "Audit Complete"
                    font: Theme.textFont(20, Font.DemiBold)
                    color: Theme.foreground
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }
                Label {
                    objectName: "auditSummary"
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: Math.min(parent.width, 420)
                    visible: text !== ""
                    topPadding: Theme.spacing8
                    horizontalAlignment: Text.AlignHCenter
                    text: page.model.summary
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    lineHeight: 1.25
                    font: Theme.subheadline()
                    color: Theme.textMuted
                }
            }

            CoverageCard {
                objectName: "coverageCard"
                width: column.width
                coverage: page.model.coverage
                share: page.model.coverageShare
                usedClips: page.model.usedClips
                unused: page.model.unused
            }

            ConfidenceCard {
                objectName: "confidenceCard"
                width: column.width
                confidence: page.model.confidence
                share: page.model.confidenceShare
                verdict: page.model.verdict
                message: page.model.confidenceMessage
            }

            PageSection {
                objectName: "buriedGoldSection"
                width: column.width
                contentSpacing: Theme.spacing8
                visible: page.model.buriedGold.length > 0
                title: "BURIED GOLD"
                note: page.model.momentCount
                Repeater {
                    model: page.model.buriedGold
                    GoldCard {
                        required property var modelData
                        required property int index
                        objectName: "goldCard" + index
                        width: parent ? parent.width : 0
                        quote: modelData.text
                        range: modelData.range
                        length: modelData.length
                        stars: modelData.stars
                        reason: modelData.reason
                        isExpanded: page.model.expandedGold === modelData.id
                        isSelected: page.model.selectedMoments.indexOf(modelData.id) >= 0
                        onClicked: page.model.toggleExpanded(modelData.id)
                        onSelectTapped: page.model.toggleSelected(modelData.id)
                    }
                }
            }

            PageSection {
                objectName: "redundanciesSection"
                width: column.width
                contentSpacing: Theme.spacing8
                visible: page.model.redundancies.length > 0
                title: "REDUNDANCIES"
                Repeater {
                    model: page.model.redundancies
                    RedundancyCard {
                        required property var modelData
                        width: parent ? parent.width : 0
                        topic: modelData.topic
                        first: modelData.first
                        second: modelData.second
                    }
                }
            }

            PageSection {
                objectName: "alternatesSection"
                width: column.width
                contentSpacing: Theme.spacing8
                visible: page.model.alternates.length > 0
                title: "ALTERNATE TAKES"
                Repeater {
                    model: page.model.alternates
                    AlternateTakeCard {
                        required property var modelData
                        width: parent ? parent.width : 0
                        current: modelData.current
                        better: modelData.better
                        quote: modelData.text
                        reason: modelData.reason
                    }
                }
            }

            PageSection {
                objectName: "themeGapsSection"
                width: column.width
                contentSpacing: Theme.spacing8
                visible: page.model.themeGaps.length > 0
                title: "THEME GAPS"
                Repeater {
                    model: page.model.themeGaps
                    ThemeGapRow {
                        required property string modelData
                        width: parent ? parent.width : 0
                        theme: modelData
                    }
                }
            }

            Column {
                width: column.width
                spacing: Theme.spacing12
                PrimaryButtonStyle {
                    objectName: "addMomentsButton"
                    width: parent.width
                    visible: page.model.canAdd
                    text: page.model.addText
                    onClicked: page.model.rebuild()
                }
                SecondaryButtonStyle {
                    objectName: "startOverButton"
                    width: parent.width
                    text: "Audit another timeline"
                    onClicked: page.model.startOver()
                }
            }
        }
    }
}
