#pragma once

#include "ui/WindowDriver.h"

#include <QString>

namespace zuvo::tests {

/// Checks that the window shows something, and writes what it shows as {name}.png to the folder that the variable
/// ZUVO_PICTURES names: pictures for a person to look at. Without the variable nothing is written.
void takePicture(WindowDriver& driver, const QString& name);

} // namespace zuvo::tests
