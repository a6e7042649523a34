#include "base/Json.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zuvo {

namespace {

constexpr int prettyIndent = 2;

/// Whether brackets outside of strings nest deeper than the limit, found before a tree is built. Counts on text that
/// may be no JSON at all; the parser decides that afterwards.
bool nestsTooDeep(std::string_view text) {
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > maximumJsonDepth)
                return true;
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return false;
}

const Json* find(const Json& object, const char* key) {
    if (!object.is_object())
        return nullptr;
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

template <class Tree>
bool hasOnlyFiniteNumbers(const Tree& tree) {
    if (tree.is_number_float())
        return std::isfinite(tree.template get<double>());
    if (!tree.is_structured())
        return true;
    return std::all_of(tree.begin(), tree.end(), [](const Tree& child) { return hasOnlyFiniteNumbers(child); });
}

} // namespace

std::optional<Json> parseForeignJson(std::string_view text) {
    // The parser takes a zero byte for the end of its input and would pass over what follows it.
    if (text.find('\0') != std::string_view::npos || nestsTooDeep(text))
        return std::nullopt;
    auto tree = Json::parse(text, nullptr, false);
    if (tree.is_discarded())
        return std::nullopt;
    return tree;
}

std::optional<double> readNumber(const Json& object, const char* key) {
    const auto* value = find(object, key);
    if (value == nullptr || !value->is_number())
        return std::nullopt;
    return value->get<double>();
}

std::optional<std::int64_t> asInteger(const Json& value) {
    if (value.is_number_unsigned()) {
        const auto number = value.get<std::uint64_t>();
        if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return std::nullopt;
        return static_cast<std::int64_t>(number);
    }
    if (value.is_number_integer())
        return value.get<std::int64_t>();
    if (!value.is_number_float())
        return std::nullopt;
    const auto number = value.get<double>();
    // The upper end is 2^63, the first double that no longer fits.
    if (std::trunc(number) != number || number < -9223372036854775808.0 || number >= 9223372036854775808.0)
        return std::nullopt;
    return static_cast<std::int64_t>(number);
}

std::optional<std::int64_t> readInteger(const Json& object, const char* key) {
    const auto* value = find(object, key);
    return value == nullptr ? std::nullopt : asInteger(*value);
}

std::optional<std::string> readText(const Json& object, const char* key) {
    const auto* value = find(object, key);
    if (value == nullptr || !value->is_string())
        return std::nullopt;
    return value->get<std::string>();
}

std::optional<std::vector<const Json*>> readObjects(const Json& object, const char* key) {
    const auto* list = find(object, key);
    if (list == nullptr || !list->is_array())
        return std::nullopt;
    std::vector<const Json*> objects;
    objects.reserve(list->size());
    for (const auto& element : *list) {
        if (!element.is_object())
            return std::nullopt;
        objects.push_back(&element);
    }
    return objects;
}

std::optional<std::string> compactText(const OrderedJson& tree) {
    if (!hasOnlyFiniteNumbers(tree))
        return std::nullopt;
    return tree.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

std::optional<std::string> prettySortedText(const Json& tree) {
    if (!hasOnlyFiniteNumbers(tree))
        return std::nullopt;
    return tree.dump(prettyIndent, ' ', false, Json::error_handler_t::replace);
}

} // namespace zuvo
