#include "base/Secrets.h"

#include "base/Text.h"

namespace zuvo {

namespace {

/// From that many bytes on a key is no ordinary word.
constexpr std::size_t unmistakableBytes = 8;

constexpr std::size_t shownKeyCharacters = 12;

bool isPartOfAWord(char character) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isDigit = byte >= '0' && byte <= '9';
    const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte >= 0x80;
    return isDigit || isLetter;
}

/// Whether the bytes from `start` to `end` stand alone.
bool isWord(std::string_view text, std::size_t start, std::size_t end) {
    return (start == 0 || !isPartOfAWord(text[start - 1])) && (end == text.size() || !isPartOfAWord(text[end]));
}

std::string withMasked(const std::string& text, const std::string& key) {
    if (key.empty())
        return text;
    std::string masked;
    std::size_t done = 0;
    for (auto at = text.find(key); at != std::string::npos; at = text.find(key, at)) {
        const auto end = at + key.size();
        if (key.size() >= unmistakableBytes || isWord(text, at, end)) {
            masked.append(text, done, at - done).append(maskedKey);
            done = end;
            at = end;
        } else {
            ++at;
        }
    }
    return masked.append(text, done, std::string::npos);
}

} // namespace

std::string withMaskedKeys(std::string_view text, std::span<const std::string> keys) {
    std::string masked(text);
    for (const auto& whole : keys) {
        const auto key = trimWhiteSpace(whole);
        masked = withMasked(masked, key);
        const auto asInJson = replaceAll(key, "/", "\\/");
        if (asInJson != key)
            masked = withMasked(masked, asInJson);
    }
    return masked;
}

std::string shownBeginning(std::string_view key) {
    const auto characters = characterCount(key);
    return firstCharacters(key, characters > shownKeyCharacters ? shownKeyCharacters : characters / 2);
}

} // namespace zuvo
