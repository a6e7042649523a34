import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// The small spaced label above a section.
Label {
    font: Theme.textFont(11, Font.DemiBold, 1.8)
    color: Theme.faded(Theme.textMuted, 0.7)
}
