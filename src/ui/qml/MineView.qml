import QtQuick
import Zuvo

/// The guided flow: the step indicator above the page of the current step.
FocusScope {
    id: view

    required property MineViewModel model

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    StepIndicator {
        id: stepIndicator
        width: parent.width
        flow: view.model
        // The step that is gone back to takes the keyboard no longer: the page does.
        onChosen: pageStack.forceActiveFocus()
    }
    /// Asks whether to wait for another program's mine, and shows that it is waited for. Seldom needed, so it costs the
    /// start nothing.
    Loader {
        id: otherMine
        y: stepIndicator.height
        width: parent.width
        height: implicitHeight
    }
    Connections {
        target: view.model
        function onOtherMineChanged() {
            if (view.model.otherMine === "")
                otherMine.source = "";
            else if (otherMine.status === Loader.Null)
                otherMine.setSource("OtherMineNotice.qml", { "flow": view.model });
        }
    }
    PageStack {
        id: pageStack
        objectName: "pageStack"
        y: stepIndicator.height + otherMine.height
        width: parent.width
        height: parent.height - y
        focus: true
        flow: view.model
    }
    // By name, since a start without a notice has no use for dialogs.
    Loader {
        id: noticeLoader
        objectName: "noticeLoader"
        readonly property bool isWanted: view.model.noticeText !== ""
        onIsWantedChanged: {
            if (isWanted)
                setSource("NoticeAlert.qml", { "flow": view.model });
            else
                source = "";
        }
    }
    Component.onCompleted: model.show()
}
