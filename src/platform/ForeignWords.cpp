#include "platform/ForeignWords.h"

#include <QString>

namespace zuvo {

std::string oneLine(const std::string& text) {
    const auto simplified = QString::fromStdString(text).simplified().toStdString();
    return firstCharacters(withoutControlCharacters(simplified), foreignWordsLimit);
}

} // namespace zuvo
