// Any bytes as text: counting, cutting, trimming and reading numbers.

#include "base/Numbers.h"
#include "base/Text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);

    const std::size_t count = zuvo::characterCount(text);
    require(zuvo::firstCharacters(text, count) == text);
    const std::string half = zuvo::firstCharacters(text, count / 2);
    require(text.starts_with(half) && zuvo::characterCount(half) <= count);

    require(text.find(zuvo::trimWhiteSpace(text)) != std::string_view::npos);
    require(zuvo::trimWhiteSpace(zuvo::trimWhiteSpace(text)) == zuvo::trimWhiteSpace(text));
    for (const auto piece : zuvo::splitAtBlanks(text))
        require(!piece.empty() && piece.find(' ') == std::string_view::npos);
    require(zuvo::decodeUtf8(std::string(text)).has_value() == zuvo::isValidUtf8(text));

    if (const auto number = zuvo::parseDouble(text))
        require(zuvo::parseDouble(zuvo::plainText(*number)) == number);
    return 0;
}
