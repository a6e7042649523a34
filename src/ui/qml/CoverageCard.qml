import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// How much of the interview the cut uses.
SolidCard {
    id: card

    property string coverage: "" ///< "37.4%"
    property real share: 0 ///< of the bar, 0 to 1
    property string usedClips: ""
    property string unused: ""

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

    padding: Theme.spacing20
    spacing: Theme.spacing12
    ScoreRow {
        title: "COVERAGE"
        value: card.coverage
        valueSize: 18
    }
    ShareBar {
        objectName: "coverageBar"
        width: parent.width
        share: card.share
        label: "Coverage " + card.coverage
        startColor: Theme.stepGradient(0)[0]
        endColor: Theme.stepGradient(0)[1]
    }
    Row {
        width: parent.width
        SmallPair {
            width: parent.width / 2
            title: "Used"
            titleColor: Theme.accent
            detail: card.usedClips
        }
        SmallPair {
            objectName: "unusedPair"
            width: parent.width / 2
            alignment: Text.AlignRight
            title: "Unused"
            titleColor: Theme.textMuted
            detail: card.unused
        }
    }
}
