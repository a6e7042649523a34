import QtQuick
import Zuvo

/// The one window: no title bar of the desktop's, but a strip to move it by, its own buttons, and edges to resize it.
Window {
    id: window

    required property ContentViewModel content
    /// What the screen has to give: where the window opens, and how large it may be at first.
    required property rect room

    title: "Zuvo"
    flags: Qt.Window | Qt.FramelessWindowHint
    // Never larger than its room.
    minimumWidth: Math.min(900, room.width)
    minimumHeight: Math.min(600, room.height)
    width: Math.min(1100, room.width)
    height: Math.min(750, room.height)
    color: Qt.rgba(0.102, 0.086, 0.071, 1)

    Component.onCompleted: {
        x = room.x + (room.width - width) / 2;
        y = room.y + (room.height - height) / 2;
    }

    /// Brings the window up, whatever hides it.
    function bringUp() {
        if (window.visibility === Window.Minimized || !window.visible)
            window.showNormal();
        window.raise();
        window.requestActivate();
    }

    // The first that Tab reaches, as they stand first.
    WindowButtons {
        z: 2
        x: 20
        y: 20
        window: window
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
    ResizeEdges {
        z: 3
        anchors.fill: parent
        window: window
        enabled: window.visibility !== Window.Maximized && window.visibility !== Window.FullScreen
    }
}
