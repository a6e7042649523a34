import QtQuick
import QtQuick.Controls.Basic
import Zuvo

/// Stands where an audit has nothing to show. The step indicator is the way back.
FocusScope {
    required property MineViewModel flow

    Label {
        anchors.centerIn: parent
        text: "No audit report available"
        font: Theme.body()
        color: Theme.textMuted
    }
}
