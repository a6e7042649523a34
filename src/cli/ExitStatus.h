#pragma once

namespace zuvo {

/// Exit statuses of the program. That of a run that was asked to end by a signal is 128 and the signal's number.
enum class ExitStatus { complete = 0, failed = 1, wrongUsage = 2, hungUp = 129, interrupted = 130, terminated = 143 };

} // namespace zuvo
