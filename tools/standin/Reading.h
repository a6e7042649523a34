#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace zuvo::standin {

// How a prompt is taken apart, for those who answer one.

/// Takes the expected text off the front; false, with nothing taken, if something else stands there.
[[nodiscard]] bool take(std::string_view& text, std::string_view expected);

/// Takes a decimal number off the front.
[[nodiscard]] bool takeNumber(std::string_view& text, double& value);

/// Shorter words tell nothing of what a passage is about.
inline constexpr std::size_t tellingLetters = 5;

/// Words in lower case with how often they occur. Anything but ASCII punctuation and digits counts as a letter.
[[nodiscard]] std::map<std::string, int> countWords(std::string_view text);

} // namespace zuvo::standin
