import QtQuick
import Zuvo

/// Asks before a sign-in link that was not begun here changes the account.
Item {
    id: view

    required property ContentViewModel content
    /// Kept while the alert fades away, and so that an answer is one to what was read.
    property string question: ""

    function ask() {
        if (content.signInQuestion === "")
            return;
        question = content.signInQuestion;
        alert.open();
    }

    Connections {
        target: view.content
        function onSignInQuestionChanged() { view.ask(); }
    }
    Component.onCompleted: ask()

    ConfirmAlert {
        id: alert
        objectName: "signInAlert"
        title: view.question
        message: "A link was opened that this window did not ask for."
        keepText: "Cancel"
        proceedText: "Sign In"
        onKept: view.content.declineSignIn()
        onProceeded: view.content.acceptSignIn(view.question)
    }
}
