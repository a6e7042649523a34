import QtQuick
import Zuvo

/// The pickaxe as square pixels, twelve to an edge.
PixelDrawing {
    property real size: 22

    implicitWidth: size
    implicitHeight: size
    /// S handle, H head, h head in the light.
    rows: [
        "..hhhhhh....",
        ".HHHHHHHHh..",
        "HH....HHHHh.",
        ".......HHHH.",
        "......SSHHHh",
        ".....SS..HHh",
        "....SS....Hh",
        "...SS.....Hh",
        "..SS......Hh",
        ".SS.......Hh",
        "SS.......HH.",
        "S........H.."
    ]
    inks: ({
        "S": Qt.rgba(0.55, 0.41, 0.08, 1),
        "H": Theme.accent,
        "h": Qt.tint(Theme.accent, Theme.faded(Theme.torchGlow, 0.6))
    })
}
