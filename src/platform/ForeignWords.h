#pragma once

#include <string>

namespace zuvo {

// Words of other programs and names from archives, before a user sees them.

/// The text with each control character (line ends included) and each byte that is no UTF-8 as U+FFFD.
[[nodiscard]] std::string harmlessText(const std::string& text);

/// One line of at most `foreignWordsLimit` characters: white space at both ends dropped, within the text as one blank,
/// the rest as `harmlessText` makes it.
[[nodiscard]] std::string oneLine(const std::string& text);

inline constexpr int foreignWordsLimit = 500;

} // namespace zuvo
