#pragma once

#include "ui/WindowDriver.h"

#include <QString>

namespace zuvo::tests {

/// Checks that the window shows something and tells a screen reader the name of every control. Writes what it shows as
/// {name}.png and what it tells as {name}.txt to the folder that the variable ZUVO_PICTURES names, for a person to look
/// at. Without the variable nothing is written.
void takePicture(WindowDriver& driver, const QString& name);

} // namespace zuvo::tests
