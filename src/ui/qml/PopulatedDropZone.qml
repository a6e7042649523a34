import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The files that were dropped. More can be dropped on it.
Column {
    id: zone

    required property SetupPageModel model
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
    Column {
        width: parent.width
        spacing: Theme.spacing8
        Accessible.role: Accessible.List
        Accessible.name: "Source files"
        Repeater {
            id: rows
            model: zone.model.files
            FileRow {
                id: row
                required property string fileId
                width: zone.width
                onRemoved: {
                    const reason = removeButton.visualFocus ? Qt.TabFocusReason : Qt.OtherFocusReason;
                    const hadKeyboard = removeButton.activeFocus;
                    const place = row.index;
                    const list = rows;
                    zone.model.removeFile(row.fileId);
                    // Whoever removes by the keyboard goes on from the next row.
                    if (hadKeyboard && list.count > 0)
                        list.itemAt(Math.min(place, list.count - 1)).removeButton.forceActiveFocus(reason);
                }
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
