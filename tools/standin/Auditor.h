#pragma once

#include "base/Json.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo::standin {

/// A line of the marked transcript in a prompt; seconds on the transcript's time line, end not included.
struct MarkedLine {
    double start = 0.0;
    double end = 0.0;
    bool isUsed = false;
    std::string text;
};

/// What an audit prompt asks about.
struct AuditRequest {
    double coveragePercent = 0.0;
    std::vector<MarkedLine> lines;
};

/// Reads lines such as `[UNUSED] [125.5s → 131.2s] And that was the winter we lost the boat.` and the share from
/// `"coveragePercent": 12.5`. Nothing if either is missing: then it is no prompt for an audit.
[[nodiscard]] std::optional<AuditRequest> readAuditPrompt(std::string_view prompt);

/// The reply to an audit prompt. Buried gold are the longest unused lines, three at the most; a redundancy is a pair of
/// used lines, an alternate an unused line for a used one, that share two telling words; theme gaps are the telling
/// words that are said most in unused lines and in no used one. The confidence is the share of lines that are used.
[[nodiscard]] OrderedJson judgeCut(const AuditRequest& request);

} // namespace zuvo::standin
