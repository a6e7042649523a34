#pragma once

#include "standin/Exchange.h"

#include <string_view>

namespace zuvo::standin {

/// The only place that the sign-in page sends anybody on to.
inline constexpr std::string_view signInCallback = "zuvo-manager://callback";

/// The sign-in page, whose button leads to `signInCallback` with a new made-up token in its query. A page with status
/// 400 if another callback is asked for.
[[nodiscard]] Answer signInPage(std::string_view callback);

/// Where the user would buy credits.
[[nodiscard]] Answer billingPage();

} // namespace zuvo::standin
