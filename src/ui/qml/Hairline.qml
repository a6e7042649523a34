pragma Singleton
import QtQuick

/// Widths of the thinnest lines: half a unit where the screen can show it, else one whole pixel.
QtObject {
    /// `devicePixelRatio` is that of the window's screen.
    function width(devicePixelRatio) { return devicePixelRatio >= 2 ? 0.5 : 1; }
}
