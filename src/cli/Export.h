#pragma once

#include "cli/Arguments.h"
#include "cli/MineSession.h"

#include <QCoroTask>

namespace zuvo {

/// Writes a saved project's story for another editing system into the project's folder, and prints the file's path.
/// The project's media are probed anew; one that is gone is exported as a file of which nothing is known. Failures are
/// told on standard error.
QCoro::Task<ExitStatus> exportProject(std::shared_ptr<LocalPipeline> pipeline, ExportCommand command);

} // namespace zuvo
