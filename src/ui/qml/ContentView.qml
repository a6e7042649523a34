import QtQuick
import Zuvo

/// The sign-in page, or the sidebar beside the page of its chosen entry.
FocusScope {
    id: view

    required property ContentViewModel content

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    Loader {
        id: sidebar
        width: 220
        height: parent.height
    }
    Rectangle {
        id: separator
        visible: view.content.isSignedIn
        x: sidebar.width
        width: Hairline.width(Screen.devicePixelRatio)
        height: parent.height
        color: Theme.faded(Theme.border, 0.2)
    }
    Loader {
        id: page
        objectName: "page"
        readonly property real inset: view.content.isSignedIn ? sidebar.width + separator.width : 0
        x: inset
        width: parent.width - inset
        height: parent.height
        focus: true
    }

    function showPage() {
        if (!content.isSignedIn)
            sidebar.source = "";
        else if (sidebar.item === null)
            sidebar.setSource("Sidebar.qml", { "content": content });
        if (content.pageName === "")
            page.source = "";
        else
            page.setSource(content.pageName + ".qml", { "model": content.page, "focus": true });
    }

    // Made for the first question: the alert's controls cost the start nothing.
    Loader { id: signInAlert }

    function askAboutSignIn() {
        if (content.signInQuestion !== "" && signInAlert.item === null)
            signInAlert.setSource("SignInAlert.qml", { "content": content });
    }

    Connections {
        target: view.content
        function onPageChanged() { view.showPage(); }
        function onSignInQuestionChanged() { view.askAboutSignIn(); }
    }
    Component.onCompleted: {
        showPage();
        askAboutSignIn();
    }
}
