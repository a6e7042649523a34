import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// What logging by hand would have taken.
TintCard {
    id: card

    property string savedTime: ""
    property string basis: "" ///< what it was worked out from

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
        text: card.savedTime
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
        text: card.basis
        font: Theme.textFont(10, Font.Normal)
        color: Theme.faded(Theme.textMuted, 0.5)
    }
}
