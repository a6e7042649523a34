import QtQuick
import Zuvo

/// The main action of a page.
StyledButton {
    fill: Theme.accent
    textColor: "white"
    shadowColor: Theme.accent
}
