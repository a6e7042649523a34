import QtQuick

/// The main action of a page.
StyledButton {
    fill: Theme.accent
    textColor: "white"
    shadowColor: Theme.accent
}
