import QtQuick
import Zuvo

/// An action beside the main one.
StyledButton {
    fill: down ? Theme.surfaceHover : Theme.surface
    textColor: Theme.foreground
    symbolColor: Theme.textMuted
    textWeight: Font.Medium
    lineColor: Theme.faded(Theme.border, 0.4)
}
