#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zuvo {

/// The first value that a shell start-up file gives to `name` by "NAME=value" or "export NAME=value" at the start of a
/// line (blanks and tabs before it allowed), without one pair of surrounding quotes. Empty values are passed over.
/// Nothing is expanded and no comment is cut off.
[[nodiscard]] std::optional<std::string> keyInShellFile(std::string_view fileText, std::string_view name);

/// The key in a file that holds nothing else: the text without white space at its ends; nothing if that is empty.
[[nodiscard]] std::optional<std::string> keyInKeyFile(std::string_view fileText);

} // namespace zuvo
