// A sign-in link that another program hands over, and any text at all as the token in one.

#include "Fuzzing.h"
#include "account/CallbackUrl.h"
#include "base/Text.h"

#include <string>

using namespace zuvo;

namespace {

std::string percentEncoded(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        encoded += {'%', digits[byte / 16], digits[byte % 16]};
    }
    return encoded;
}

} // namespace

ZUVO_FUZZ_TARGET {
    const std::string url(text);
    if (const auto token = tokenOfCallbackUrl(url)) {
        fuzzing::require(url.starts_with("zuvo-manager://"));
        fuzzing::require(url.find('?') != std::string::npos && url.find('=') != std::string::npos);
        fuzzing::require(isValidUtf8(*token));
    }
    if (!isValidUtf8(text))
        return;
    // The service's token comes back as it was, whatever it holds and whatever stands around it.
    const auto encoded = percentEncoded(text);
    fuzzing::require(tokenOfCallbackUrl("zuvo-manager://callback?token=" + encoded) == url);
    fuzzing::require(tokenOfCallbackUrl("zuvo-manager://callback/x?" + encoded + "=1&token=" + encoded + "#token=2") ==
                     (url == "token" ? "1" : url));
    fuzzing::require(!tokenOfCallbackUrl("https://callback?token=" + encoded));
}
