import QtQuick
import Zuvo

/// A rounded fill with a light gradient over it and a border that may change from top to bottom.
Item {
    id: surface

    property color fill: Theme.cardBg
    property Gradient sheen: Theme.subtleGradient
    property real cornerRadius: Theme.radiusLg
    property color borderTop: Theme.faded(Theme.border, 0.25)
    property color borderBottom: borderTop
    property real borderWidth: Hairline.width(Screen.devicePixelRatio)

    readonly property bool isSeeThrough: fill.a < 1

    // What lies beneath an opaque body is not seen, so that its border may be a whole card.
    Rectangle {
        anchors.fill: parent
        visible: !surface.isSeeThrough
        radius: surface.cornerRadius
        gradient: Gradient {
            GradientStop { position: 0; color: surface.borderTop }
            GradientStop { position: 1; color: surface.borderBottom }
        }
    }
    Loader {
        anchors.fill: parent
        active: surface.isSeeThrough
        sourceComponent: GradientBorder {
            lineWidth: surface.borderWidth
            cornerRadius: surface.cornerRadius
            topColor: surface.borderTop
            bottomColor: surface.borderBottom
        }
    }
    Rectangle {
        id: body
        anchors.fill: parent
        anchors.margins: surface.borderWidth
        radius: surface.cornerRadius - surface.borderWidth
        color: surface.fill
    }
    Rectangle {
        anchors.fill: body
        radius: body.radius
        visible: surface.sheen !== null
        gradient: surface.sheen
    }
}
