#pragma once

#include "platform/Environment.h"

namespace zuvo {

/// Removes what programs of this home folder have left that were killed or lost power: half-written new files in the
/// cache folder, the folder of projects and beside the token, and temporary files. What a running program uses stays.
void removeLeftovers(const Environment& environment);

} // namespace zuvo
