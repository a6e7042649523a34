#include "platform/ForeignWords.h"

#include "base/Text.h"

#include <QString>

namespace zuvo {

std::string harmlessText(const std::string& text) {
    // By way of Qt, which makes U+FFFD of each byte that is no UTF-8.
    const auto valid = QString::fromStdString(text).toStdString();
    return replaceAll(withoutControlCharacters(valid), "\n", "\uFFFD");
}

std::string oneLine(const std::string& text) {
    const auto simplified = QString::fromStdString(text).simplified().toStdString();
    return firstCharacters(withoutControlCharacters(simplified), foreignWordsLimit);
}

} // namespace zuvo
