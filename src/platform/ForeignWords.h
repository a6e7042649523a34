#pragma once

#include "base/Text.h"

#include <string>

namespace zuvo {

// Words of other programs, before a user sees them. `harmlessText` (base/Text.h) is for names.

/// One line of at most `foreignWordsLimit` characters: white space at both ends dropped, within the text as one blank,
/// the rest as `harmlessText` makes it.
[[nodiscard]] std::string oneLine(const std::string& text);

/// The text of a service for a page: at most `foreignWordsLimit` characters, of which the last is "…" if it was longer.
/// A text whose characters are piled up out of very many code points is cut by its bytes.
[[nodiscard]] std::string pageText(const std::string& text);

/// User-perceived characters of what another program says that a user is shown.
inline constexpr int foreignWordsLimit = 500;

} // namespace zuvo
