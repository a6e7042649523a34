import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// What an audit found: how much of the interview the cut uses, and what was left on the floor.
FocusScope {
    id: page

    required property MineViewModel flow
    readonly property AuditPageModel model: AuditPageModel { flow: page.flow }

    // The system's own colours in a dark window.
    readonly property color systemGreen: "#30D158"
    readonly property color systemOrange: "#FF9F0A"
    readonly property color systemRed: "#FF453A"
    readonly property color verdictColor: model.verdict === "excellent" ? systemGreen
                                          : model.verdict === "good" ? systemOrange : systemRed

    component Section: Column {
        id: section
        property alias title: titleLabel.text
        property alias note: noteLabel.text
        default property alias content: body.data
        width: parent ? parent.width : 0
        spacing: Theme.spacing12
        Item {
            width: section.width
            height: titleLabel.implicitHeight
            SectionLabel {
                id: titleLabel
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            Label {
                id: noteLabel
                anchors.right: parent.right
                anchors.baseline: titleLabel.baseline
                font: Theme.caption2()
                color: Theme.textMuted
            }
        }
        Column {
            id: body
            width: section.width
            spacing: Theme.spacing8
        }
    }

    component ScoreRow: Item {
        id: score
        property alias title: scoreTitle.text
        property alias value: scoreLabel.text
        property int valueSize: 18
        width: parent ? parent.width : 0
        height: 24
        SectionLabel {
            id: scoreTitle
            anchors.verticalCenter: parent.verticalCenter
        }
        Label {
            id: scoreLabel
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            font: Theme.textFont(score.valueSize, Font.DemiBold)
            color: Theme.foreground
            Accessible.name: scoreTitle.text + " " + text
        }
    }

    component SmallPair: Column {
        id: pair
        property alias title: pairTitle.text
        property alias titleColor: pairTitle.color
        property alias detail: pairDetail.text
        property int alignment: Text.AlignLeft
        spacing: Theme.spacing2
        Label {
            id: pairTitle
            width: parent.width
            horizontalAlignment: pair.alignment
            font: Theme.textFont(10, Font.DemiBold)
        }
        Label {
            id: pairDetail
            width: parent.width
            horizontalAlignment: pair.alignment
            font: Theme.textFont(9, Font.Normal)
            color: Theme.textMuted
        }
    }

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

            SolidCard {
                objectName: "coverageCard"
                width: column.width
                padding: Theme.spacing20
                spacing: Theme.spacing12
                ScoreRow {
                    title: "COVERAGE"
                    value: page.model.coverage
                    valueSize: 18
                }
                ShareBar {
                    objectName: "coverageBar"
                    width: parent.width
                    share: page.model.coverageShare
                    label: "Coverage " + page.model.coverage
                    startColor: Theme.stepGradient(0)[0]
                    endColor: Theme.stepGradient(0)[1]
                }
                Row {
                    width: parent.width
                    SmallPair {
                        width: parent.width / 2
                        title: "Used"
                        titleColor: Theme.accent
                        detail: page.model.usedClips
                    }
                    SmallPair {
                        objectName: "unusedPair"
                        width: parent.width / 2
                        alignment: Text.AlignRight
                        title: "Unused"
                        titleColor: Theme.textMuted
                        detail: page.model.unused
                    }
                }
            }

            SolidCard {
                objectName: "confidenceCard"
                width: column.width
                padding: Theme.spacing20
                spacing: Theme.spacing12
                ScoreRow {
                    title: "CONFIDENCE SCORE"
                    value: page.model.confidence
                    valueSize: 16
                }
                ShareBar {
                    objectName: "confidenceBar"
                    width: parent.width
                    cornerRadius: 6
                    share: page.model.confidenceShare
                    label: "Confidence score " + page.model.confidence
                    startColor: page.verdictColor
                    endColor: Theme.faded(page.verdictColor, 0.7)
                }
                Label {
                    objectName: "confidenceMessage"
                    width: parent.width
                    text: page.model.confidenceMessage
                    wrapMode: Text.Wrap
                    font: Theme.caption()
                    color: Theme.textMuted
                }
            }

            Section {
                objectName: "buriedGoldSection"
                width: column.width
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

            Section {
                objectName: "redundanciesSection"
                width: column.width
                visible: page.model.redundancies.length > 0
                title: "REDUNDANCIES"
                Repeater {
                    model: page.model.redundancies
                    SolidCard {
                        id: redundancy
                        required property var modelData
                        width: parent ? parent.width : 0
                        padding: Theme.spacing16
                        spacing: Theme.spacing12
                        cornerRadius: Theme.radiusSm
                        Row {
                            width: parent.width
                            spacing: Theme.spacing8
                            Symbol {
                                y: 1
                                name: "exclamationmark.triangle.fill"
                                size: 12
                                color: Theme.warning
                            }
                            Label {
                                width: parent.width - 22
                                text: redundancy.modelData.topic
                                textFormat: Text.PlainText
                                wrapMode: Text.Wrap
                                font: Theme.textFont(13, Font.Medium)
                                color: Theme.foreground
                            }
                        }
                        Row {
                            spacing: Theme.spacing24
                            TimeRange {
                                title: "First instance"
                                range: redundancy.modelData.first
                            }
                            Symbol {
                                anchors.verticalCenter: parent.verticalCenter
                                name: "arrow.right"
                                size: 12
                                color: Theme.textMuted
                            }
                            TimeRange {
                                title: "Repeated at"
                                range: redundancy.modelData.second
                            }
                        }
                    }
                }
            }

            Section {
                objectName: "alternatesSection"
                width: column.width
                visible: page.model.alternates.length > 0
                title: "ALTERNATE TAKES"
                Repeater {
                    model: page.model.alternates
                    SolidCard {
                        id: take
                        required property var modelData
                        width: parent ? parent.width : 0
                        padding: Theme.spacing16
                        spacing: Theme.spacing12
                        cornerRadius: Theme.radiusSm
                        Row {
                            spacing: Theme.spacing24
                            Symbol {
                                anchors.verticalCenter: parent.verticalCenter
                                name: "arrow.triangle.swap"
                                size: 14
                                color: Theme.gemSapphire
                            }
                            TimeRange {
                                title: "Current"
                                range: take.modelData.current
                            }
                            TimeRange {
                                title: "Better"
                                titleColor: Theme.success
                                range: take.modelData.better
                            }
                        }
                        Column {
                            width: parent.width
                            spacing: Theme.spacing4
                            Label {
                                width: parent.width
                                text: take.modelData.text
                                textFormat: Text.PlainText
                                wrapMode: Text.Wrap
                                font: Theme.caption()
                                color: Theme.foreground
                            }
                            Label {
                                width: parent.width
                                text: take.modelData.reason
                                textFormat: Text.PlainText
                                wrapMode: Text.Wrap
                                font: Theme.caption2()
                                color: Theme.textMuted
                            }
                        }
                    }
                }
            }

            Section {
                objectName: "themeGapsSection"
                width: column.width
                visible: page.model.themeGaps.length > 0
                title: "THEME GAPS"
                Repeater {
                    model: page.model.themeGaps
                    Rectangle {
                        id: gap
                        required property string modelData
                        width: parent ? parent.width : 0
                        height: gapLabel.implicitHeight + Theme.spacing16
                        radius: 6
                        color: Theme.faded(Theme.muted, 0.3)
                        Symbol {
                            x: Theme.spacing12
                            anchors.verticalCenter: parent.verticalCenter
                            name: "circle.fill"
                            size: 6
                            color: Theme.accent
                        }
                        Label {
                            id: gapLabel
                            x: 28
                            y: Theme.spacing8
                            width: parent.width - x - Theme.spacing12
                            text: gap.modelData
                            textFormat: Text.PlainText
                            wrapMode: Text.Wrap
                            font: Theme.caption2()
                            color: Theme.foreground
                        }
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
