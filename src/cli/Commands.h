#pragma once

#include "cli/Arguments.h"
#include "cli/MineSession.h"
#include "platform/Platform.h"

namespace zuvo {

/// Carries out a command and gives the program's exit status. Needs a QCoreApplication; runs its event loop for a mine.
[[nodiscard]] ExitStatus carryOut(Command command, const Platform& platform);

} // namespace zuvo
