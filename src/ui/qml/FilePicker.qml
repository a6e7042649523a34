import QtQuick
import QtQuick.Dialogs
import Zuvo

/// Asks for media files with the desktop's own dialog.
Item {
    id: picker

    property var filters: []
    /// What asks: it has `open()`, the signals `accepted()` and `rejected()`, and `selectedFiles`.
    property Component dialog: FileDialog {
        title: "Select audio or video files to mine"
        fileMode: FileDialog.OpenFiles
        nameFilters: picker.filters
        currentFolder: FootageFolder.url()
    }

    signal chosen(var urls)

    function open() {
        const asking = dialog.createObject(picker);
        asking.accepted.connect(() => {
            FootageFolder.remember(asking.selectedFiles);
            picker.chosen(asking.selectedFiles);
            asking.destroy();
        });
        asking.rejected.connect(() => asking.destroy());
        asking.open();
    }
}
