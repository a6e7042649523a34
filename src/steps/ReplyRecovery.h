#pragma once

#include "base/Fields.h"
#include "model/MiningResults.h"

#include <optional>
#include <string>
#include <string_view>

namespace zuvo {

// From the text that a language model answered to a story, with what can be kept of it.

/// The reply without white space at its ends, without a code fence around it, cut to the stretch from the first "{" to
/// the last "}". A text that lacks either, or has them in the wrong order, stays uncut and will not decode.
[[nodiscard]] std::string cleanReply(std::string_view reply);

/// Goes through the JSON key by key and keeps what it can: segments without times are dropped, other missing or
/// ill-typed keys get defaults, the total is computed from the segments kept. Nothing if the text is no JSON object
/// with a list of objects `segments`, or no segment is left. `text` is of `cleanReply`.
[[nodiscard]] std::optional<MiningResults> tryManualParse(std::string_view text);

} // namespace zuvo
