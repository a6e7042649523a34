#pragma once

#include "ui/WindowDriver.h"

namespace zuvo::tests {

/// Fails the test if a text on screen is cut off, sticks out of its control, card or window, or lies on another.
void expectAllTextsToBeRead(WindowDriver& driver);

/// The same in the smallest window, the usual one and a large one.
void expectAllTextsToBeReadAtAllSizes(WindowDriver& driver);

} // namespace zuvo::tests
