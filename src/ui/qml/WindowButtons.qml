import QtQuick
import Zuvo

/// Close, minimise and zoom.
Row {
    id: buttons

    required property Window window

    spacing: Theme.spacing8

    component Dot: PlainButton {
        id: dot
        required property color color
        required property string mark
        implicitWidth: 12
        implicitHeight: 12
        ringRadius: 6
        background: Rectangle {
            radius: 6
            color: dot.down ? Qt.darker(dot.color, 1.25) : dot.color
        }
        // Seldom pointed at: a start does without the text and its font.
        contentItem: Loader {
            active: hover.hovered
            sourceComponent: Text {
                text: dot.mark
                font: Theme.textFont(9, Font.Bold)
                color: Qt.rgba(0, 0, 0, 0.6)
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
            }
        }
    }

    Dot {
        objectName: "closeButton"
        text: "Close"
        mark: "×"
        color: Qt.rgba(1.0, 0.37, 0.34, 1)
        onClicked: buttons.window.close()
    }
    Dot {
        objectName: "minimiseButton"
        text: "Minimise"
        mark: "–"
        color: Qt.rgba(0.99, 0.74, 0.18, 1)
        onClicked: buttons.window.showMinimized()
    }
    Dot {
        objectName: "zoomButton"
        text: "Zoom"
        mark: "+"
        color: Qt.rgba(0.16, 0.78, 0.25, 1)
        onClicked: {
            if (buttons.window.visibility === Window.Maximized)
                buttons.window.showNormal();
            else
                buttons.window.showMaximized();
        }
    }

    HoverHandler { id: hover }
}
