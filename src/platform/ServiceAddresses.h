#pragma once

#include "platform/Environment.h"

#include <string>

namespace zuvo {

/// Where a service is reached, or why the address that was set is refused.
struct ServiceAddress {
    std::string url;     ///< empty if refused
    std::string refusal; ///< empty if accepted

    [[nodiscard]] bool isRefused() const { return !refusal.empty(); }
};

// An address is https, or http to loopback or a private network given by number (or localhost); anything else is
// refused, since a key would go there in the clear. A blank variable counts as unset and "/" at its end is dropped. The
// address is judged before any key is read.

/// {OPENAI_BASE_URL, which ends in its version}/audio/transcriptions
[[nodiscard]] ServiceAddress transcriptionAddress(const Environment& environment);

/// {ANTHROPIC_BASE_URL, less a "/v1" at its end}/v1/messages
[[nodiscard]] ServiceAddress messagesAddress(const Environment& environment);

/// The addresses of the account service: those of `Constants::API`, with the scheme, host and port of ZUVO_SERVICE_URL
/// in place of their own if it is set. All three are empty if it is refused.
struct AccountAddresses {
    std::string baseURL;
    std::string authURL;
    std::string billingURL;
    std::string refusal; ///< empty if accepted

    [[nodiscard]] bool isRefused() const { return !refusal.empty(); }
};

/// Those that this environment asks for.
[[nodiscard]] AccountAddresses accountAddresses(const Environment& environment);

/// Why a base address may not be used, or an empty text. `variable` is named in the refusal.
[[nodiscard]] std::string refusalOfBaseAddress(const std::string& base, const std::string& variable);

/// Whether the host of this absolute URL is this machine or an address of a private network.
[[nodiscard]] bool isNearAddress(const std::string& url);

} // namespace zuvo
