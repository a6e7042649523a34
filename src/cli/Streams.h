#pragma once

#include "cli/ExitStatus.h"

#include <string>

namespace zuvo {

/// To standard output, as it is.
void print(const std::string& text);

/// A path on a line of its own, to standard output. A program that reads it gets its bytes; on a terminal the names in
/// it are made harmless.
void printPath(const std::string& path);

/// A line to standard error, with control characters made harmless.
void tell(const std::string& text);

/// Tells why a command failed, as "zuvo: {message}".
[[nodiscard]] ExitStatus failWith(const std::string& message);

} // namespace zuvo
