import QtQuick

/// How what belongs to the other source comes in.
NumberAnimation {
    duration: 200
    easing.type: Easing.InOutQuad
}
