#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace zuvo {

// Keys and tokens in lines that a user is shown or that go into a log.

/// What is shown in place of a key.
inline constexpr std::string_view maskedKey = "***";

/// The text with every occurrence of one of the keys masked, also as JSON may write it ("\/" for "/"). White space at
/// the ends of a key is not part of it. A key of fewer than 8 bytes is masked only where no letter or digit adjoins it,
/// since it may be an ordinary word. A text without a key comes back byte for byte; an empty key masks nothing.
[[nodiscard]] std::string withMaskedKeys(std::string_view text, std::span<const std::string> keys);

/// The beginning of a key for the one line that names it: its first 12 user-perceived characters, but of a key of at
/// most 12 the first half, so that no line ever holds a whole key.
[[nodiscard]] std::string shownBeginning(std::string_view key);

} // namespace zuvo
