import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// An act and its chapters as chips: as many as two rows hold, and how many more there are.
Item {
    id: act

    required property DonePageModel pageModel
    property string name: ""
    property var chapters: []
    /// For each chapter the place of its colour, counted round and round in the list of gems.
    property var gems: []

    readonly property real chipPadding: 10
    readonly property real chipSpacing: Theme.spacing8
    readonly property real room: Math.floor(width * 0.55)
    readonly property var chipWidths: chapters.map(chapter => chipWidth(chapter))
    readonly property int shown: pageModel ? pageModel.shownChips(chipWidths, room, chipSpacing, restWidth) : 0
    /// Of the chip that tells how many are left out, at its widest.
    readonly property real restWidth: chipWidth("+" + chapters.length)
    readonly property int rest: chapters.length - shown

    function chipWidth(chapter) {
        return Math.min(Math.ceil(metrics.advanceWidth(chapter)) + 1 + 2 * chipPadding, room);
    }

    implicitHeight: Math.max(nameLabel.implicitHeight, chips.implicitHeight)

    FontMetrics {
        id: metrics
        font: Theme.textFont(11, Font.Medium)
    }

    component Chip: Rectangle {
        id: chip
        property string text: ""
        property color ink: Theme.textMuted
        height: 20
        radius: 6
        color: Theme.faded(ink, 0.12)
        Label {
            anchors.centerIn: parent
            width: Math.min(implicitWidth, parent.width - 2 * act.chipPadding + 1)
            text: chip.text
            textFormat: Text.PlainText
            elide: Text.ElideRight
            font: metrics.font
            color: chip.ink
        }
    }

    Label {
        id: nameLabel
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - (act.chapters.length > 0 ? Math.min(chips.width, act.room) + Theme.spacing16 : 0)
        text: act.name
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        maximumLineCount: 3
        elide: Text.ElideRight
        font: Theme.textFont(13, Font.Medium)
        color: Theme.foreground
    }
    Flow {
        id: chips
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        // As wide as one row is, if all chips fit into one.
        width: {
            let wanted = act.rest > 0 ? act.restWidth : -spacing;
            for (let index = 0; index < act.shown; ++index)
                wanted += act.chipWidths[index] + spacing;
            return Math.max(0, Math.min(wanted, act.room));
        }
        layoutDirection: Qt.LeftToRight
        spacing: act.chipSpacing
        Repeater {
            model: act.shown
            Chip {
                required property int index
                objectName: "chapterChip"
                width: act.chipWidths[index]
                text: act.chapters[index]
                ink: Theme.chapterGems[act.gems[index] % Theme.chapterGems.length]
            }
        }
        Chip {
            objectName: "moreChapters"
            visible: act.rest > 0
            width: act.restWidth
            text: "+" + act.rest
        }
    }
}
