import QtQuick
import Zuvo

/// The ground of a page: from the window's own colour to a quieter one.
Rectangle {
    id: ground

    property real depth: 0.3

    gradient: Gradient {
        GradientStop { position: 0; color: Theme.background }
        GradientStop { position: 1; color: Qt.tint(Theme.background, Theme.faded(Theme.muted, ground.depth)) }
    }
}
