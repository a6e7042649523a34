import QtQuick

/// A strip at the top by which the window is moved; a double click makes it as large as the screen and back.
Item {
    id: strip

    required property Window window

    // The window manager moves the window if there is one that can; it is asked once a press. Else it is moved by hand.
    property bool isMovedByHand: false
    property point pressedAt

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.LeftButton
        property bool hasAsked: false

        onPressed: mouse => {
            hasAsked = false;
            strip.isMovedByHand = false;
            strip.pressedAt = Qt.point(mouse.x, mouse.y);
        }
        onPositionChanged: mouse => {
            const dx = mouse.x - strip.pressedAt.x;
            const dy = mouse.y - strip.pressedAt.y;
            if (!hasAsked && Math.abs(dx) + Math.abs(dy) > Application.styleHints.startDragDistance / 2) {
                hasAsked = true;
                strip.isMovedByHand = !strip.window.startSystemMove();
            }
            if (strip.isMovedByHand) {
                strip.window.x += dx;
                strip.window.y += dy;
            }
        }
        onDoubleClicked: {
            if (strip.window.visibility === Window.Maximized)
                strip.window.showNormal();
            else
                strip.window.showMaximized();
        }
    }
}
