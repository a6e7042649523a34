#include "platform/ForeignWords.h"

#include "base/Text.h"

#include <QString>

namespace zuvo {

namespace {

std::string withoutControlCharacters(QString text) {
    for (auto& character : text) {
        if (character.category() == QChar::Other_Control)
            character = QChar::ReplacementCharacter;
    }
    return text.toStdString();
}

} // namespace

std::string harmlessText(const std::string& text) {
    return withoutControlCharacters(QString::fromStdString(text));
}

std::string oneLine(const std::string& text) {
    return firstCharacters(withoutControlCharacters(QString::fromStdString(text).simplified()), foreignWordsLimit);
}

} // namespace zuvo
