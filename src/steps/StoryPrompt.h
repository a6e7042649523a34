#pragma once

#include "steps/EnergyThresholds.h"

#include <string>

namespace zuvo {

/// What goes into the instruction for the story.
struct StoryPromptInput {
    double targetMinutes = 0.0;
    std::string style;           ///< of `buildStylePrompt`
    EnergyThresholds thresholds; ///< its counts
    double totalDuration = 0.0;  ///< seconds: the end of the last transcript line
    std::string sourceLanguage;
    std::string transcript; ///< of `annotatedTranscript`, with its final line end
};

/// The whole instruction, ending in a closing brace with nothing behind it. Filled in one pass: what is filled in is
/// not looked at for placeholders again.
[[nodiscard]] std::string storyPrompt(const StoryPromptInput& input);

} // namespace zuvo
