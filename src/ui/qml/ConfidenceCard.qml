import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// How good the cut is thought to be.
SolidCard {
    id: card

    property string confidence: "" ///< "72/100"
    property real share: 0 ///< of the bar, 0 to 1
    property string verdict: "" ///< "excellent", "good" or "majorGaps"
    property string message: ""

    // The system's own colours in a dark window.
    readonly property color systemGreen: "#30D158"
    readonly property color systemOrange: "#FF9F0A"
    readonly property color systemRed: "#FF453A"
    readonly property color verdictColor: verdict === "excellent" ? systemGreen
                                          : verdict === "good" ? systemOrange : systemRed

    padding: Theme.spacing20
    spacing: Theme.spacing12
    ScoreRow {
        title: "CONFIDENCE SCORE"
        value: card.confidence
        valueSize: 16
    }
    ShareBar {
        objectName: "confidenceBar"
        width: parent.width
        cornerRadius: 6
        share: card.share
        label: "Confidence score " + card.confidence
        startColor: card.verdictColor
        endColor: Theme.faded(card.verdictColor, 0.7)
    }
    Label {
        objectName: "confidenceMessage"
        width: parent.width
        text: card.message
        wrapMode: Text.Wrap
        font: Theme.caption()
        color: Theme.textMuted
    }
}
