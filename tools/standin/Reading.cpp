#include "standin/Reading.h"

#include <charconv>

namespace zuvo::standin {

bool take(std::string_view& text, std::string_view expected) {
    if (text.substr(0, expected.size()) != expected)
        return false;
    text.remove_prefix(expected.size());
    return true;
}

bool takeNumber(std::string_view& text, double& value) {
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (error != std::errc())
        return false;
    text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
    return true;
}

std::map<std::string, int> countWords(std::string_view text) {
    std::map<std::string, int> counts;
    std::string word;
    for (const char c : std::string(text) + " ") {
        const bool upper = c >= 'A' && c <= 'Z';
        if (upper || (c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) >= 0x80) {
            word += upper ? static_cast<char>(c - 'A' + 'a') : c;
            continue;
        }
        if (!word.empty())
            ++counts[word];
        word.clear();
    }
    return counts;
}

} // namespace zuvo::standin
