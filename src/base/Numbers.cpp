#include "base/Numbers.h"

#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace zuvo {

namespace {

/// from_chars takes no leading "+", so it is taken off here; "+-1" stays unreadable.
std::string_view withoutPlus(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    return text;
}

bool hasOnlyDecimalCharacters(std::string_view text) {
    return text.find_first_not_of("0123456789+-.eE") == std::string_view::npos;
}

} // namespace

std::optional<double> parseDouble(std::string_view text) {
    text = withoutPlus(text);
    if (!hasOnlyDecimalCharacters(text))
        return std::nullopt;
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    text = withoutPlus(text);
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::string plainText(double value) {
    auto text = fmt::format("{}", value);
    if (text.find_first_not_of("0123456789-") == std::string::npos)
        text += ".0";
    return text;
}

std::string fixedText(double value, int digits) {
    return fmt::format("{:.{}f}", value, digits);
}

std::int64_t truncated(double value) {
    // 2^63 itself does not fit, and is the first double above the largest integer.
    constexpr double limit = 9223372036854775808.0;
    if (std::isnan(value))
        return 0;
    if (value >= limit)
        return std::numeric_limits<std::int64_t>::max();
    if (value < -limit)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

std::int64_t roundedUp(double value) {
    return truncated(std::ceil(value));
}

std::int64_t rounded(double value) {
    return truncated(std::round(value));
}

std::int64_t saturatingSum(std::int64_t a, std::int64_t b) {
    using Limits = std::numeric_limits<std::int64_t>;
    if (b > 0 && a > Limits::max() - b)
        return Limits::max();
    if (b < 0 && a < Limits::min() - b)
        return Limits::min();
    return a + b;
}

} // namespace zuvo
