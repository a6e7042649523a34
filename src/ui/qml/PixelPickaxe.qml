import QtQuick
import Zuvo

/// The pickaxe as square pixels, twelve to an edge.
Item {
    id: pickaxe

    property real size: 22
    /// S handle, H head, h head in the light.
    readonly property var rows: [
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
    readonly property color handle: Qt.rgba(0.55, 0.41, 0.08, 1)
    readonly property color lit: Qt.tint(Theme.accent, Theme.faded(Theme.torchGlow, 0.6))
    readonly property var cells: {
        const found = [];
        for (let row = 0; row < rows.length; ++row) {
            for (let column = 0; column < rows[row].length; ++column) {
                if (rows[row][column] !== ".")
                    found.push({ "row": row, "column": column, "kind": rows[row][column] });
            }
        }
        return found;
    }

    /// Edges fall on whole pixels of the screen, so that no seam shows between cells.
    function edge(index) {
        const ratio = Screen.devicePixelRatio;
        return Math.round(index * size / 12 * ratio) / ratio;
    }

    implicitWidth: size
    implicitHeight: size

    Repeater {
        model: pickaxe.cells
        Rectangle {
            required property var modelData
            x: pickaxe.edge(modelData.column)
            y: pickaxe.edge(modelData.row)
            width: pickaxe.edge(modelData.column + 1) - x
            height: pickaxe.edge(modelData.row + 1) - y
            antialiasing: false
            color: modelData.kind === "S" ? pickaxe.handle : modelData.kind === "h" ? pickaxe.lit : Theme.accent
        }
    }
}
