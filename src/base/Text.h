#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

// Text is UTF-8 throughout. Functions that return views return views into their argument: the caller keeps it alive.
// No function here fails on invalid UTF-8: a byte that starts no valid sequence counts as one character of its own.

/// Number of user-perceived characters (grapheme clusters).
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// The first `count` user-perceived characters, or the whole text if it has fewer.
[[nodiscard]] std::string firstCharacters(std::string_view text, std::size_t count);

/// True if every byte belongs to a well-formed UTF-8 sequence (no surrogates, nothing beyond U+10FFFF).
[[nodiscard]] bool isValidUtf8(std::string_view bytes);

/// The bytes as text, or nothing if they are not valid UTF-8.
[[nodiscard]] std::optional<std::string> decodeUtf8(std::string bytes);

/// Without U+0020 at both ends. Tabs and line ends stay.
[[nodiscard]] std::string trimBlanks(std::string_view text);

/// Without U+0020 and U+0009 at both ends.
[[nodiscard]] std::string trimBlanksAndTabs(std::string_view text);

/// Without Unicode White_Space (line ends included) at both ends.
[[nodiscard]] std::string trimWhiteSpace(std::string_view text);

/// With A to Z in lower case and all else as it is. Enough to look for a name in ASCII, such as an extension.
[[nodiscard]] std::string asciiLowered(std::string_view text);

/// The pieces between separators, empty ones included: "" gives one empty piece, "a," gives two.
[[nodiscard]] std::vector<std::string_view> split(std::string_view text, char separator);

/// The non-empty pieces between U+0020. Tabs and line ends do not separate.
[[nodiscard]] std::vector<std::string_view> splitAtBlanks(std::string_view text);

/// The pieces with `separator` between them.
[[nodiscard]] std::string join(const std::vector<std::string>& pieces, std::string_view separator);

/// Every occurrence of `what` replaced, from the left, without looking at replaced text again. An empty `what`
/// changes nothing.
[[nodiscard]] std::string replaceAll(std::string_view text, std::string_view what, std::string_view with);

/// A name in a template and what stands there once it is filled in.
struct Placeholder {
    std::string_view name; ///< with what marks it as a placeholder
    std::string value;
};

/// The template with every placeholder replaced, in one pass: what was filled in is not looked at again, so that a
/// transcript in which somebody says "{style}" stays as it is. Of two names that fit at one place the earlier holds.
[[nodiscard]] std::string fillPlaceholders(std::string_view text, std::span<const Placeholder> placeholders);

// Foreign text for a reader. What could move the cursor of a terminal, reorder a line or break it without being seen
// becomes U+FFFD: C0, DEL and C1 controls, the marks and overrides of writing direction (U+061C, U+200E, U+200F, U+202A
// to U+202E, U+2066 to U+2069), the separators U+2028 and U+2029, and each byte that belongs to no valid UTF-8.

/// A name or another text that belongs on one line: line ends become U+FFFD too.
[[nodiscard]] std::string harmlessText(std::string_view text);

/// A text of several lines: its line ends stay.
[[nodiscard]] std::string withoutControlCharacters(std::string_view text);

/// "" for exactly one, else "s".
[[nodiscard]] std::string_view pluralS(std::size_t count);

} // namespace zuvo
