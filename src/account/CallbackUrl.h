#pragma once

#include <optional>
#include <string>

namespace zuvo {

/// The token of a sign-in link, "zuvo-manager://callback?token={token}"; nothing for any other text.
///
/// Scheme and host must stand there as written above, in small letters. User name, port, path, fragment and further
/// query items do not matter. Of several items named "token" the first counts, and if that one has no "=", the link has
/// no token; "token=" has the empty one. Percent-encoding is decoded once and "+" is a plus. A "%" that starts no
/// encoding stands for itself, and encoded bytes that are no UTF-8 never fail: such a token is a wrong one, which the
/// service refuses.
[[nodiscard]] std::optional<std::string> tokenOfCallbackUrl(const std::string& url);

} // namespace zuvo
