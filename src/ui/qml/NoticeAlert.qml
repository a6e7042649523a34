import QtQuick
import QtQuick.Dialogs
import Zuvo

/// What the flow has to tell at once. A story that could not be saved can be copied into a folder of the user's choice;
/// the notice stays until that has worked or the user closes it.
Item {
    id: notice
    objectName: "notice"

    required property MineViewModel flow
    /// What asks for the folder: it has `open()`, the signals `accepted()` and `rejected()`, and `selectedFolder`.
    property Component dialog: FolderDialog { title: "Save a copy of the story" }

    function askForFolder() {
        const asking = dialog.createObject(notice);
        asking.accepted.connect(() => {
            const folder = asking.selectedFolder;
            asking.destroy();
            notice.flow.saveCopy(folder);
            alert.open();
        });
        asking.rejected.connect(() => {
            asking.destroy();
            alert.open();
        });
        asking.open();
    }

    ConfirmAlert {
        id: alert
        objectName: "noticeAlert"
        width: 420
        title: notice.flow.noticeTitle
        message: notice.flow.noticeText
        isDestructive: false
        keepText: "Close"
        proceedText: notice.flow.canSaveCopy ? "Save a copy..." : ""
        onProceeded: notice.askForFolder()
        onKept: notice.flow.dismissNotice()
    }
    Component.onCompleted: alert.open()
}
