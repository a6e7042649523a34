import QtQuick

/// The edges and corners by which a window without a frame is resized: by the window manager if it can, else by hand.
Item {
    id: edges

    required property Window window
    readonly property int thickness: 5

    component Edge: MouseArea {
        id: edge
        required property int sides ///< Qt.Edge flags
        property bool isResizedByHand: false
        property point pressedAt

        acceptedButtons: Qt.LeftButton
        cursorShape: {
            switch (sides) {
            case Qt.LeftEdge:
            case Qt.RightEdge:
                return Qt.SizeHorCursor;
            case Qt.TopEdge:
            case Qt.BottomEdge:
                return Qt.SizeVerCursor;
            case Qt.LeftEdge | Qt.TopEdge:
            case Qt.RightEdge | Qt.BottomEdge:
                return Qt.SizeFDiagCursor;
            default:
                return Qt.SizeBDiagCursor;
            }
        }
        onPressed: mouse => {
            pressedAt = Qt.point(mouse.x, mouse.y);
            isResizedByHand = !edges.window.startSystemResize(sides);
        }
        onPositionChanged: mouse => {
            if (isResizedByHand)
                edges.resizeBy(sides, mouse.x - pressedAt.x, mouse.y - pressedAt.y);
        }
    }

    /// Moves the named sides of the window, never below its smallest size.
    function resizeBy(sides, dx, dy) {
        if (sides & Qt.RightEdge)
            window.width = Math.max(window.minimumWidth, window.width + dx);
        if (sides & Qt.BottomEdge)
            window.height = Math.max(window.minimumHeight, window.height + dy);
        if (sides & Qt.LeftEdge) {
            const step = Math.min(dx, window.width - window.minimumWidth);
            window.x += step;
            window.width -= step;
        }
        if (sides & Qt.TopEdge) {
            const step = Math.min(dy, window.height - window.minimumHeight);
            window.y += step;
            window.height -= step;
        }
    }

    Edge { sides: Qt.TopEdge; width: parent.width; height: edges.thickness }
    Edge { sides: Qt.BottomEdge; width: parent.width; height: edges.thickness; anchors.bottom: parent.bottom }
    Edge { sides: Qt.LeftEdge; width: edges.thickness; height: parent.height }
    Edge { sides: Qt.RightEdge; width: edges.thickness; height: parent.height; anchors.right: parent.right }
    Edge { sides: Qt.LeftEdge | Qt.TopEdge; width: 2 * edges.thickness; height: width }
    Edge { sides: Qt.RightEdge | Qt.TopEdge; width: 2 * edges.thickness; height: width; anchors.right: parent.right }
    Edge { sides: Qt.LeftEdge | Qt.BottomEdge; width: 2 * edges.thickness; height: width; anchors.bottom: parent.bottom }
    Edge {
        sides: Qt.RightEdge | Qt.BottomEdge
        width: 2 * edges.thickness
        height: width
        anchors.right: parent.right
        anchors.bottom: parent.bottom
    }
}
