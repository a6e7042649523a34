#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zuvo {

// Number forms that never depend on the desktop's locale.

/// The whole text as a decimal double: an optional sign, digits with an optional point, an optional exponent. No white
/// space around it, no hexadecimal, no "inf" or "nan"; a value beyond the range of a double, or too
/// small to be told from zero, does not parse either.
[[nodiscard]] std::optional<double> parseDouble(std::string_view text);

/// The whole text as a decimal integer with an optional sign; nothing if it does not fit 64 bits.
[[nodiscard]] std::optional<std::int64_t> parseInteger(std::string_view text);

/// The shortest text that reads back the same, with ".0" on whole numbers: 300.0, 0.1, 33.333333333333336. From 1e16 on
/// and below 1e-4 with an exponent: 1e+16, 1e-05.
[[nodiscard]] std::string plainText(double value);

/// "%.{digits}f" in the C locale.
[[nodiscard]] std::string fixedText(double value, int digits);

/// Truncated toward zero. Values beyond 64 bits give the nearest end of the range, NaN gives 0.
[[nodiscard]] std::int64_t truncated(double value);

/// The smallest integer not below the value, with the same ends as `truncated`.
[[nodiscard]] std::int64_t roundedUp(double value);

/// Rounded to the nearest integer, halves away from zero, with the same ends as `truncated`.
[[nodiscard]] std::int64_t rounded(double value);

/// The sum, or the nearest end of the range if it does not fit 64 bits.
[[nodiscard]] std::int64_t saturatingSum(std::int64_t a, std::int64_t b);

} // namespace zuvo
