import QtQuick
import Zuvo

/// An action that takes something away.
StyledButton {
    textColor: Theme.error
    textWeight: Font.Medium
    lineColor: Theme.faded(Theme.error, 0.3)
}
