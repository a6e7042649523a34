#pragma once

#include "cli/ExitStatus.h"

#include <string>

namespace zuvo {

/// To standard output, as it is.
void print(const std::string& text);

/// A line to standard error, with control characters made harmless.
void tell(const std::string& text);

/// Tells why a command failed, as "zuvo: {message}".
[[nodiscard]] ExitStatus failWith(const std::string& message);

} // namespace zuvo
