import QtQuick
import QtQuick.Window
import Zuvo

/// The one window: no title bar of the desktop's, but a strip to move it by, its own buttons, and edges to resize it.
Window {
    id: window

    required property ContentViewModel content

    title: "Zuvo"
    flags: Qt.Window | Qt.FramelessWindowHint
    // Never larger than what the screen has to give.
    minimumWidth: Math.min(900, Screen.desktopAvailableWidth)
    minimumHeight: Math.min(600, Screen.desktopAvailableHeight)
    width: Math.min(1100, Screen.desktopAvailableWidth)
    height: Math.min(750, Screen.desktopAvailableHeight)
    color: Qt.rgba(0.102, 0.086, 0.071, 1)

    Component.onCompleted: {
        x = Screen.virtualX + (Screen.desktopAvailableWidth - width) / 2;
        y = Screen.virtualY + (Screen.desktopAvailableHeight - height) / 2;
    }

    /// Brings the window up, whatever hides it.
    function bringUp() {
        if (window.visibility === Window.Minimized || !window.visible)
            window.showNormal();
        window.raise();
        window.requestActivate();
    }

    // Above the controls of every page, and over the sidebar as far down as its first text.
    TitleStrip {
        z: 1
        width: parent.width
        height: 18
        window: window
    }
    TitleStrip {
        z: 1
        width: 220
        height: 50
        window: window
    }
    ContentView {
        anchors.fill: parent
        content: window.content
        focus: true
    }
    WindowButtons {
        z: 2
        x: 20
        y: 20
        window: window
    }
    ResizeEdges {
        z: 3
        anchors.fill: parent
        window: window
        enabled: window.visibility !== Window.Maximized && window.visibility !== Window.FullScreen
    }
}
