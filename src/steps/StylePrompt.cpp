#include "steps/StylePrompt.h"

#include "base/Text.h"

#include <array>
#include <vector>

namespace zuvo {

namespace {

/// Below the first a slider reads as low, above the second as high; both themselves are middle.
constexpr double lowBound = 0.3;
constexpr double highBound = 0.7;

constexpr const char* magicLine =
    "MAGIC MODE: Listen to the content and decide the best style yourself. Match the tone of the speaker and subject "
    "matter. Explain your style choice in the results.";

struct SliderPhrases {
    double StyleSliders::*slider;
    const char* low;
    const char* middle;
    const char* high;
};

constexpr std::array<SliderPhrases, 6> sliderPhrases = {{
    {&StyleSliders::pace, "Meditative, slow", "Moderate pace", "Fast-paced, energetic"},
    {&StyleSliders::structure, "Loose, freeform", "Balanced structure", "Rigid, structured"},
    {&StyleSliders::emotion, "Reserved, understated", "Moderate emotion", "Raw, emotional"},
    {&StyleSliders::length, "Tight cuts, short segments", "Medium length segments", "Extended, breathing room"},
    {&StyleSliders::boldness, "Conservative, safe choices", "Moderate boldness", "Bold, unexpected choices"},
    {&StyleSliders::silence, "Fill gaps, keep moving", "Balanced silence", "Let it breathe, embrace silence"},
}};

const char* phraseFor(const SliderPhrases& phrases, double value) {
    if (value < lowBound)
        return phrases.low;
    if (value > highBound)
        return phrases.high;
    return phrases.middle;
}

} // namespace

std::string buildStylePrompt(const StyleSliders& sliders, const std::optional<std::string>& presetId, bool isMagicMode,
                             const std::string& directorNotes) {
    std::vector<std::string> lines;
    if (isMagicMode) {
        lines.emplace_back(magicLine);
    } else {
        if (const auto* preset = presetId ? findPreset(*presetId) : nullptr)
            lines.push_back("Base style: " + std::string(preset->name) + " — " + std::string(preset->description));
        for (const auto& phrases : sliderPhrases)
            lines.emplace_back(phraseFor(phrases, sliders.*(phrases.slider)));
    }
    const auto notes = trimWhiteSpace(directorNotes);
    // The entry begins with a line end of its own, which leaves an empty line above the heading.
    if (!notes.empty())
        lines.push_back("\nDIRECTOR'S NOTES (highest priority — follow these instructions):\n" + notes);
    return join(lines, "\n");
}

} // namespace zuvo
