#include "platform/ForeignWords.h"

#include <QString>

namespace zuvo {

std::string pageText(const std::string& text) {
    // Enough for 500 characters of any script; one "character" of a megabyte of accents takes a page minutes to draw.
    constexpr std::size_t mostBytes = 16UL * foreignWordsLimit;
    auto shown = firstCharacters(text.substr(0, mostBytes + 1), foreignWordsLimit);
    if (shown.size() > mostBytes)
        shown = text.substr(0, mostBytes);
    if (shown.size() == text.size())
        return text;
    while (!shown.empty() && (static_cast<unsigned char>(text[shown.size()]) & 0xC0U) == 0x80U)
        shown.pop_back(); // within a character
    return firstCharacters(shown, foreignWordsLimit - 1) + "…";
}

std::string oneLine(const std::string& text) {
    const auto simplified = QString::fromStdString(text).simplified().toStdString();
    return firstCharacters(withoutControlCharacters(simplified), foreignWordsLimit);
}

} // namespace zuvo
