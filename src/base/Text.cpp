#include "base/Text.h"

#include <algorithm>
#include <array>
#include <utf8proc.h>

namespace zuvo {

namespace {

/// What an invalid byte is read as: a control character, which nothing ever joins to a grapheme cluster.
constexpr utf8proc_int32_t invalidByte = 0;

/// One code point of a text: its value, and how many bytes it took. A byte that starts no valid sequence is read as
/// `invalidByte` of length 1, so that every text can be walked to its end.
struct CodePoint {
    utf8proc_int32_t value;
    std::size_t bytes;
};

CodePoint codePointAt(std::string_view text, std::size_t position) {
    utf8proc_int32_t value = 0;
    const auto* data = reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + position;
    const auto left = static_cast<utf8proc_ssize_t>(text.size() - position);
    const auto length = utf8proc_iterate(data, left, &value);
    if (length <= 0)
        return {invalidByte, 1};
    return {value, static_cast<std::size_t>(length)};
}

/// The byte position behind the first `count` grapheme clusters, and how many there were.
struct Prefix {
    std::size_t bytes;
    std::size_t characters;
};

Prefix graphemePrefix(std::string_view text, std::size_t count) {
    std::size_t position = 0;
    std::size_t characters = 0;
    utf8proc_int32_t state = 0;
    utf8proc_int32_t previous = 0;
    while (position < text.size()) {
        const auto current = codePointAt(text, position);
        const bool starts = position == 0 || utf8proc_grapheme_break_stateful(previous, current.value, &state) != 0;
        if (starts) {
            if (characters == count)
                break;
            ++characters;
        }
        previous = current.value;
        position += current.bytes;
    }
    return {position, characters};
}

constexpr std::array<utf8proc_int32_t, 9> singleWhiteSpaces = {0x20,   0x85,   0xA0,   0x1680, 0x2028,
                                                               0x2029, 0x202F, 0x205F, 0x3000};

bool isWhiteSpace(utf8proc_int32_t value) {
    if ((value >= 0x09 && value <= 0x0D) || (value >= 0x2000 && value <= 0x200A))
        return true;
    return std::find(singleWhiteSpaces.begin(), singleWhiteSpaces.end(), value) != singleWhiteSpaces.end();
}

std::string trimBytes(std::string_view text, std::string_view bytes) {
    const auto first = text.find_first_not_of(bytes);
    if (first == std::string_view::npos)
        return {};
    const auto last = text.find_last_not_of(bytes);
    return std::string(text.substr(first, last - first + 1));
}

struct CodePointRange {
    utf8proc_int32_t first;
    utf8proc_int32_t last; ///< included
};

/// What a reader does not see, or sees the effect of elsewhere: see `harmlessText`.
constexpr std::array<CodePointRange, 7> unseenCharacters = {{{0x00, 0x1F},
                                                             {0x7F, 0x9F},
                                                             {0x061C, 0x061C},
                                                             {0x200E, 0x200F},
                                                             {0x2028, 0x2029},
                                                             {0x202A, 0x202E},
                                                             {0x2066, 0x2069}}};

/// Invalid bytes are read as U+0000, which is among them.
bool isUnseen(utf8proc_int32_t value) {
    return std::any_of(unseenCharacters.begin(), unseenCharacters.end(),
                       [value](const CodePointRange& range) { return value >= range.first && value <= range.last; });
}

enum class LineEnds { stay, becomeVisible };

std::string withUnseenShown(std::string_view text, LineEnds lineEnds) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const auto current = codePointAt(text, position);
        const bool stays = current.value == '\n' && lineEnds == LineEnds::stay;
        if (isUnseen(current.value) && !stays)
            shown += "\uFFFD";
        else
            shown += text.substr(position, current.bytes);
        position += current.bytes;
    }
    return shown;
}

} // namespace

std::size_t characterCount(std::string_view text) {
    return graphemePrefix(text, std::string_view::npos).characters;
}

std::string firstCharacters(std::string_view text, std::size_t count) {
    return std::string(text.substr(0, graphemePrefix(text, count).bytes));
}

bool isValidUtf8(std::string_view bytes) {
    std::size_t position = 0;
    while (position < bytes.size()) {
        utf8proc_int32_t value = 0;
        const auto* data = reinterpret_cast<const utf8proc_uint8_t*>(bytes.data()) + position;
        const auto length = utf8proc_iterate(data, static_cast<utf8proc_ssize_t>(bytes.size() - position), &value);
        if (length <= 0)
            return false;
        position += static_cast<std::size_t>(length);
    }
    return true;
}

std::optional<std::string> decodeUtf8(std::string bytes) {
    if (!isValidUtf8(bytes))
        return std::nullopt;
    return bytes;
}

std::string trimBlanks(std::string_view text) {
    return trimBytes(text, " ");
}

std::string trimBlanksAndTabs(std::string_view text) {
    return trimBytes(text, " \t");
}

std::string trimWhiteSpace(std::string_view text) {
    std::size_t first = 0;
    while (first < text.size()) {
        const auto current = codePointAt(text, first);
        if (!isWhiteSpace(current.value))
            break;
        first += current.bytes;
    }
    // Walked forwards, since a code point cannot be read backwards from a text that may hold invalid bytes.
    std::size_t end = first;
    std::size_t position = first;
    while (position < text.size()) {
        const auto current = codePointAt(text, position);
        position += current.bytes;
        if (!isWhiteSpace(current.value))
            end = position;
    }
    return std::string(text.substr(first, end - first));
}

std::string asciiLowered(std::string_view text) {
    std::string lowered(text);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return lowered;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    for (;;) {
        const auto end = text.find(separator, start);
        if (end == std::string_view::npos) {
            pieces.push_back(text.substr(start));
            return pieces;
        }
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
}

std::vector<std::string_view> splitAtBlanks(std::string_view text) {
    auto pieces = split(text, ' ');
    std::erase_if(pieces, [](std::string_view piece) { return piece.empty(); });
    return pieces;
}

std::string join(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string joined;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0)
            joined += separator;
        joined += pieces[i];
    }
    return joined;
}

std::string replaceAll(std::string_view text, std::string_view what, std::string_view with) {
    if (what.empty())
        return std::string(text);
    std::string replaced;
    std::size_t start = 0;
    for (;;) {
        const auto found = text.find(what, start);
        if (found == std::string_view::npos) {
            replaced += text.substr(start);
            return replaced;
        }
        replaced += text.substr(start, found - start);
        replaced += with;
        start = found + what.size();
    }
}

std::string fillPlaceholders(std::string_view text, std::span<const Placeholder> placeholders) {
    std::string filled;
    while (!text.empty()) {
        const auto found = std::find_if(placeholders.begin(), placeholders.end(),
                                        [text](const Placeholder& one) { return text.starts_with(one.name); });
        if (found == placeholders.end()) {
            filled += text.front();
            text.remove_prefix(1);
        } else {
            filled += found->value;
            text.remove_prefix(found->name.size());
        }
    }
    return filled;
}

std::string harmlessText(std::string_view text) {
    return withUnseenShown(text, LineEnds::becomeVisible);
}

std::string withoutControlCharacters(std::string_view text) {
    return withUnseenShown(text, LineEnds::stay);
}

std::string_view pluralS(std::size_t count) {
    return count == 1 ? "" : "s";
}

} // namespace zuvo
