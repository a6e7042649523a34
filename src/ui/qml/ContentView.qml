import QtQuick
import QtQuick.Window
import Zuvo

/// The sign-in page, or the sidebar beside the page of its chosen entry.
FocusScope {
    id: view

    required property ContentViewModel content

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    Sidebar {
        id: sidebar
        visible: view.content.isSignedIn
        width: 220
        height: parent.height
        content: view.content
    }
    Rectangle {
        id: separator
        visible: sidebar.visible
        x: sidebar.width
        width: Hairline.width(Screen.devicePixelRatio)
        height: parent.height
        color: Theme.faded(Theme.border, 0.2)
    }
    Loader {
        id: page
        objectName: "page"
        readonly property real inset: sidebar.visible ? sidebar.width + separator.width : 0
        x: inset
        width: parent.width - inset
        height: parent.height
        focus: true
    }

    function showPage() {
        if (content.pageName === "")
            page.source = "";
        else
            page.setSource(content.pageName + ".qml", { "model": content.page, "focus": true });
    }

    Connections {
        target: view.content
        function onPageChanged() { view.showPage(); }
    }
    Component.onCompleted: showPage()
}
