#pragma once

#include "model/MiningResults.h"
#include "steps/Energy.h"

#include <string>
#include <vector>

namespace zuvo {

// The second half of the on-mic rule: what the model chose is measured again against the sound.

/// One thing the audit has to say, in the order in which it found it.
struct AuditLine {
    std::string text;
    std::string color; ///< one of `LogColor`
};

/// What is left of a story, and what is to be said of it.
struct AuditedStory {
    MiningResults results; ///< segments that passed, renumbered from 0; everything else as the reply gave it
    std::vector<AuditLine> lines;
};

/// Trims segments over 30 s to their first 30 s, drops those under 5 s and those whose level is below the quiet
/// threshold, and numbers the rest by position. A segment at exactly the threshold passes. Acts, subtitles and stated
/// durations are not touched: they can point at segments that are gone.
[[nodiscard]] AuditedStory auditEnergy(MiningResults reply, const std::vector<SourceFile>& sources,
                                       const SampleStore& samples, double quietThreshold);

} // namespace zuvo
