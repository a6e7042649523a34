#pragma once

namespace zuvo {

/// Exit statuses of the program.
enum class ExitStatus { complete = 0, failed = 1, wrongUsage = 2, interrupted = 130 };

} // namespace zuvo
