import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The files that were dropped. More can be dropped on it.
Column {
    id: zone

    required property SetupPageModel model
    /// The part of this item that is seen, from its upper edge.
    required property real seenFrom
    required property real seenTo
    signal browse()

    spacing: Theme.spacing12

    Item {
        width: parent.width
        implicitHeight: header.implicitHeight
        SymbolHeader {
            id: header
            symbolName: "doc.on.doc"
            text: "SOURCE FILES"
        }
        Label {
            objectName: "fileCount"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: zone.model.fileCountText
            font: Theme.textFont(11)
            color: Theme.faded(Theme.textMuted, 0.5)
        }
    }
    // Items for hundreds of rows would keep the window waiting: only those that are seen have one.
    SeenRowsModel {
        id: seen
        readonly property int cushion: 2 ///< rows above and below, so that Tab leads on
        sourceModel: zone.model.files
        firstSeen: Math.floor((zone.seenFrom - list.y) / list.pitch) - cushion
        lastSeen: Math.floor((zone.seenTo - list.y) / list.pitch) + cushion
    }
    Item {
        id: list
        objectName: "fileList"
        readonly property real rowHeight: 56
        readonly property real pitch: rowHeight + Theme.spacing8
        readonly property int count: zone.model.files.count
        width: parent.width
        implicitHeight: Math.max(0, count * pitch - Theme.spacing8)
        Accessible.role: Accessible.List
        Accessible.name: "Source files"
        Repeater {
            id: rows
            model: seen
            FileRow {
                id: row
                required property string fileId
                readonly property bool hasKeyboard: removeButton.activeFocus
                y: place * list.pitch
                width: list.width
                height: list.rowHeight
                onHasKeyboardChanged: if (hasKeyboard) seen.focusedRow = place
                onPlaceChanged: if (hasKeyboard) seen.focusedRow = place
                onRemoved: {
                    const reason = removeButton.visualFocus ? Qt.TabFocusReason : Qt.OtherFocusReason;
                    const hadKeyboard = hasKeyboard;
                    const next = place;
                    const view = list;
                    zone.model.removeFile(fileId);
                    // Whoever removes by the keyboard goes on from the next row.
                    if (hadKeyboard && view.count > 0)
                        view.standOn(next, reason);
                }
            }
        }

        // Long lists are gone through faster than row by row.
        Keys.onPressed: event => {
            const pageful = Math.max(1, Math.floor((zone.seenTo - zone.seenFrom) / pitch) - 1);
            const ways = {
                [Qt.Key_Up]: -1, [Qt.Key_Down]: 1, [Qt.Key_PageUp]: -pageful, [Qt.Key_PageDown]: pageful,
                [Qt.Key_Home]: -count, [Qt.Key_End]: count
            };
            const way = ways[event.key];
            event.accepted = way !== undefined;
            if (event.accepted)
                standOn(seen.focusedRow + way, Qt.TabFocusReason);
        }
        /// Gives the keyboard to the row of that number, or to the one at the nearer end.
        function standOn(number, reason) {
            const place = Math.max(0, Math.min(number, count - 1));
            seen.focusedRow = place;
            for (let i = 0; i < rows.count; ++i) {
                const row = rows.itemAt(i) as FileRow;
                if (row && row.place === place)
                    row.removeButton.forceActiveFocus(reason);
            }
        }
    }
    Row {
        topPadding: Theme.spacing4
        spacing: Theme.spacing12
        TintButton {
            id: addButton
            objectName: "addMoreButton"
            symbolName: "plus"
            text: "Add More"
            onClicked: zone.browse()
        }
        TextButton {
            objectName: "clearAllButton"
            height: 32
            text: "Clear All"
            textFont: Theme.textFont(12)
            textColor: Theme.faded(Theme.textMuted, 0.6)
            onClicked: zone.model.clearFiles()
        }
    }
}
