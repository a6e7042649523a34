import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Another program is mining, and what the user has asked for is put off: asks whether to wait, and shows a strip with a
/// way out while it is waited for.
Item {
    id: notice

    required property MineViewModel flow
    readonly property bool isWaiting: flow.isWaitingForOtherMine
    readonly property bool isOpenQuestion: flow.otherMine !== "" && !isWaiting

    implicitHeight: isWaiting ? 36 : 0

    Row {
        anchors.centerIn: parent
        visible: notice.isWaiting
        spacing: Theme.spacing8
        Label {
            objectName: "waitText"
            anchors.verticalCenter: parent.verticalCenter
            text: notice.flow.otherMine + ". Waiting for it to end."
            textFormat: Text.PlainText
            font: Theme.textFont(12)
            color: Theme.textMuted
        }
        TextButton {
            objectName: "giveUpButton"
            anchors.verticalCenter: parent.verticalCenter
            text: "Give Up"
            textFont: Theme.textFont(12, Font.Medium)
            textColor: Theme.accent
            onClicked: notice.flow.giveUpWaiting()
        }
    }
    ConfirmAlert {
        id: question
        objectName: "otherMineAlert"
        title: notice.flow.otherMine
        message: "Wait for it to end? What you asked for then starts by itself."
        keepText: "Not Now"
        proceedText: "Wait"
        isDestructive: false
        onKept: notice.flow.giveUpWaiting()
        onProceeded: notice.flow.waitForOtherMine()
    }
    onIsOpenQuestionChanged: isOpenQuestion ? question.open() : question.close()
    Component.onCompleted: {
        if (isOpenQuestion)
            question.open();
    }
}
