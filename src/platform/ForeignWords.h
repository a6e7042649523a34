#pragma once

#include <string>

namespace zuvo {

// Words of other programs and names from archives, before a user sees them.

/// The text with each control character and each byte that is no UTF-8 as U+FFFD: the line ends too, which
/// `withoutControlCharacters` leaves.
[[nodiscard]] std::string harmlessText(const std::string& text);

/// One line of at most `foreignWordsLimit` characters: white space at both ends dropped, within the text as one blank,
/// the rest as `harmlessText` makes it.
[[nodiscard]] std::string oneLine(const std::string& text);

/// The text of a service for a page: at most `foreignWordsLimit` characters, of which the last is "…" if it was longer.
/// A text whose characters are piled up out of very many code points is cut by its bytes.
[[nodiscard]] std::string pageText(const std::string& text);

/// User-perceived characters of what another program says that a user is shown.
inline constexpr int foreignWordsLimit = 500;

} // namespace zuvo
