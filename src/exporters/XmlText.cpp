#include "exporters/XmlText.h"

namespace zuvo::exporters {

namespace {

std::string_view entityOf(char character) {
    switch (character) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&apos;";
    default:
        return {};
    }
}

} // namespace

std::string xmlEscaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char character : text) {
        if (const auto entity = entityOf(character); !entity.empty())
            escaped += entity;
        else
            escaped += character;
    }
    return escaped;
}

} // namespace zuvo::exporters
