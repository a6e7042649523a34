#pragma once

#include <string>

namespace zuvo {

/// "{first}-{second}" with each time as its shortest decimal form: the identity of records known by two times.
[[nodiscard]] std::string timePairId(double first, double second);

} // namespace zuvo
