#pragma once

#include "model/AuditReport.h"

#include <string>

namespace zuvo {

/// An audit's report as text for a reader: figures first, then each finding with its times in seconds of mine time.
/// Line ends within the model's own texts become blanks, so that a finding cannot pass for another line.
[[nodiscard]] std::string reportText(const AuditReport& report);

} // namespace zuvo
