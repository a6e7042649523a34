#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

using Json = nlohmann::json;                ///< for reading, and for writing with sorted keys
using OrderedJson = nlohmann::ordered_json; ///< for writing in the order given

/// Text from a service, a tool or a file of the user's as JSON; nothing if it is no JSON or nests deeper than
/// `maximumJsonDepth`. The same key twice: the last one counts. The caller bounds the size of the text.
[[nodiscard]] std::optional<Json> parseForeignJson(std::string_view text);

/// Deeper nesting is refused: what reads a tree by recursion would run out of stack on hostile text.
inline constexpr int maximumJsonDepth = 200;

// Lenient reading of one key of an object: nothing if `object` is no object, the key is absent, or the value is of
// another type.

/// Any JSON number. A boolean is no number.
[[nodiscard]] std::optional<double> readNumber(const Json& object, const char* key);

/// A JSON number without a fraction (3 and 3.0, not 3.7) that fits 64 bits.
[[nodiscard]] std::optional<std::int64_t> readInteger(const Json& object, const char* key);

/// A JSON text, as UTF-8.
[[nodiscard]] std::optional<std::string> readText(const Json& object, const char* key);

/// A list of which every element is an object; with one element of another kind it is no such list. The pointers are
/// into `object`.
[[nodiscard]] std::optional<std::vector<const Json*>> readObjects(const Json& object, const char* key);

/// The value as an integer by the rule of `readInteger`.
[[nodiscard]] std::optional<std::int64_t> asInteger(const Json& value);

// Writing. Invalid UTF-8 is replaced by U+FFFD. Nothing if the tree holds a number that JSON cannot write (NaN or an
// infinity).

/// On one line, without blanks between.
[[nodiscard]] std::optional<std::string> compactText(const OrderedJson& tree);

/// Indented by two blanks, keys in ascending order at every level.
[[nodiscard]] std::optional<std::string> prettySortedText(const Json& tree);

} // namespace zuvo
