#include "steps/KeySearch.h"

#include "base/Text.h"

namespace zuvo {

namespace {

constexpr std::string_view exportWord = "export ";

std::string withoutQuotes(std::string value) {
    if (value.empty() || value.front() != value.back() || (value.front() != '"' && value.front() != '\''))
        return value;
    // A single quote character alone both begins and ends the value: nothing is left of it.
    return value.size() < 2 ? std::string() : value.substr(1, value.size() - 2);
}

/// The value that one line gives to `name`, or nothing if it gives none; empty values are given as they are.
std::optional<std::string> valueInLine(std::string_view line, std::string_view name) {
    const auto trimmed = trimBlanksAndTabs(line);
    std::string_view rest = trimmed;
    if (rest.starts_with(exportWord))
        rest.remove_prefix(exportWord.size());
    if (!rest.starts_with(name) || !rest.substr(name.size()).starts_with('='))
        return std::nullopt;
    return withoutQuotes(trimWhiteSpace(rest.substr(name.size() + 1)));
}

} // namespace

std::optional<std::string> keyInShellFile(std::string_view fileText, std::string_view name) {
    for (const auto line : split(fileText, '\n')) {
        auto value = valueInLine(line, name);
        if (value && !value->empty())
            return value;
    }
    return std::nullopt;
}

std::optional<std::string> keyInKeyFile(std::string_view fileText) {
    auto key = trimWhiteSpace(fileText);
    if (key.empty())
        return std::nullopt;
    return key;
}

} // namespace zuvo
