import QtQuick
import QtQuick.Controls.Basic

/// The bar beside what scrolls.
ScrollBar {
    Accessible.name: "Scroll bar"
}
