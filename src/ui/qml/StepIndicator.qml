import QtQuick
import Zuvo

/// The five steps of the flow. A step that is passed leads back to it.
Item {
    // A button has an `indicator` of its own, which would stand before this name.
    id: stepIndicator

    required property MineViewModel flow

    /// A step that is passed has been chosen; the flow goes to it next.
    signal chosen()

    implicitHeight: 68
    readonly property real stepsWidth: {
        let sum = 0;
        for (let i = 0; i < steps.count; ++i)
            sum += steps.itemAt(i) ? steps.itemAt(i).stepWidth : 0;
        return sum;
    }
    readonly property int connectorDotsWidth: 5 * 3 + 4 * 4
    /// Around each connector and at both ends, as much as the page has to give.
    readonly property real gap: Math.max(2, Math.min(12, (width - stepsWidth - 4 * connectorDotsWidth) / 10))

    Row {
        anchors.centerIn: parent
        // With a font that is wider than usual the narrowest window holds the steps a little smaller.
        scale: Math.min(1, (stepIndicator.width - 4) / implicitWidth)
        Repeater {
            id: steps
            model: 5
            Row {
                id: step
                required property int index
                readonly property var modelData: stepIndicator.flow.steps[index]
                readonly property bool isPassed: modelData.state === "passed"
                readonly property bool isCurrent: modelData.state === "current"
                readonly property bool isAhead: modelData.state === "ahead"
                readonly property real stepWidth: button.width

                PlainButton {
                    id: button
                    objectName: "step" + step.index
                    text: step.modelData.label
                    opacity: step.isAhead ? 0.6 : 1.0
                    focusPolicy: step.isPassed ? Qt.StrongFocus : Qt.NoFocus
                    hoverEnabled: step.isPassed
                    Accessible.description: step.isPassed ? "Go back to this step"
                                          : step.isCurrent ? "Current step" : "Not reached yet"
                    onClicked: {
                        if (step.isPassed)
                            stepIndicator.chosen();
                        stepIndicator.flow.tapStep(step.index);
                    }
                    contentItem: Row {
                        spacing: 10
                        Rectangle {
                            width: 28
                            height: 28
                            radius: 14
                            color: step.isPassed ? Theme.faded(Theme.success, 0.15)
                                 : step.isCurrent ? Theme.faded(Theme.torchGlow, 0.12) : Theme.faded(Theme.border, 0.3)
                            Symbol {
                                anchors.centerIn: parent
                                visible: step.isPassed
                                name: "checkmark"
                                size: 10
                                weight: Font.Bold
                                color: Theme.success
                            }
                            Text {
                                anchors.centerIn: parent
                                visible: !step.isPassed
                                text: step.modelData.number
                                font: Theme.textFont(11, Font.DemiBold)
                                color: step.isCurrent ? Theme.torchGlow : Theme.faded(Theme.textMuted, 0.6)
                            }
                        }
                        Text {
                            anchors.verticalCenter: parent.verticalCenter
                            text: step.modelData.label
                            font: Theme.textFont(13, step.isCurrent ? Font.DemiBold : Font.Normal)
                            color: step.isAhead ? Theme.faded(Theme.textMuted, 0.5) : Theme.foreground
                        }
                    }
                }
                Row {
                    id: connector
                    visible: step.index < 4
                    anchors.verticalCenter: parent.verticalCenter
                    leftPadding: stepIndicator.gap
                    rightPadding: stepIndicator.gap
                    spacing: 4
                    Repeater {
                        model: 5
                        Rectangle {
                            width: 3
                            height: 3
                            radius: 1.5
                            color: step.isPassed ? Theme.faded(Theme.success, 0.3) : Theme.faded(Theme.border, 0.2)
                        }
                    }
                }
            }
        }
    }
}
