// An address to which keys would go, and words of foreign programs that are shown.

#include "Fuzzing.h"
#include "base/Text.h"
#include "platform/ForeignWords.h"
#include "platform/ServiceAddresses.h"

#include <algorithm>
#include <array>
#include <string>

using namespace zuvo;

namespace {

/// Whether a host of this machine or of a private network stands there, as a person would look at it.
bool looksNear(std::string_view authority) {
    if (authority.starts_with('['))
        return true;
    const auto host = authority.substr(0, authority.find_first_of("/:"));
    constexpr std::array<std::string_view, 5> beginnings = {"127.", "10.", "172.", "192.168.", "169.254."};
    const bool isNumeric = host.find_first_not_of("0123456789.") == std::string_view::npos;
    return host == "localhost" ||
           (isNumeric && std::any_of(beginnings.begin(), beginnings.end(),
                                     [host](std::string_view beginning) { return host.starts_with(beginning); }));
}

} // namespace

ZUVO_FUZZ_TARGET {
    const std::string base(text);
    const auto refusal = refusalOfBaseAddress(base, "OPENAI_BASE_URL");
    fuzzing::require(refusal.empty() || refusal.starts_with("OPENAI_BASE_URL "));
    if (refusal.empty()) {
        const auto scheme = asciiLowered(base.substr(0, base.find("://")));
        fuzzing::require(scheme == "https" || scheme == "http");
        fuzzing::require(base.find_first_of("?#\n\r \t") == std::string::npos);
        const auto behindScheme = base.substr(base.find("://") + 3);
        const auto authority = behindScheme.substr(0, behindScheme.find('/'));
        fuzzing::require(authority.find('@') == std::string::npos);
        // In encoded form a host does not begin with what it is.
        if (scheme == "http" && isValidUtf8(text) && authority.find('%') == std::string::npos)
            fuzzing::require(looksNear(asciiLowered(authority)));
    }

    const auto shown = oneLine(base);
    fuzzing::require(isValidUtf8(shown) && characterCount(shown) <= foreignWordsLimit);
    for (const auto& words : {shown, harmlessText(base)})
        fuzzing::require(words.find_first_of("\n\r\x1b\x07") == std::string::npos);
}
