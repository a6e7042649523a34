#pragma once

#include <limits>

namespace zuvo {

// The numbers that no length or level of a real recording is.
inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace zuvo
