// A transcription measured against the sound and put into the prompts, whatever its times and texts are.

#include "Fuzzing.h"
#include "base/Json.h"
#include "steps/Energy.h"
#include "steps/ExportTexts.h"
#include "steps/StoryPrompt.h"
#include "steps/StylePrompt.h"
#include "steps/TranscriptionFormat.h"
#include "steps/UsedFootage.h"

#include <string>
#include <vector>

using namespace zuvo;

namespace {

/// Two sources of 20 s; the second lost its samples but for one.
const std::vector<SourceFile> sources = {{"a.wav", "/a.wav", 0.0, 20.0, 20.0}, {"b.wav", "/b.wav", 20.0, 40.0, 20.0}};
const SampleStore samples = {{"a.wav", Samples(20'000, 1000)}, {"b.wav", {-32'768}}};

} // namespace

ZUVO_FUZZ_TARGET {
    const auto response = decodeTranscription(text);
    if (!response.value)
        return;
    const auto lines = chunkLines(*response.value, 10.0);
    const auto energies = lineEnergies(lines, sources, samples);
    fuzzing::require(energies.size() == lines.size());
    for (const double energy : energies)
        fuzzing::require(energy >= silenceDb - 40.0 && energy <= 0.0);

    const auto thresholds = energyThresholds(energies);
    fuzzing::require(thresholds.loud + thresholds.medium + thresholds.quiet == lines.size());
    fuzzing::require(thresholds.quietThreshold <= thresholds.loudThreshold);

    const auto style = buildStylePrompt({}, "no such preset", false, std::string(text));
    fuzzing::require(style.find(text) != std::string::npos);
    const auto annotated = annotatedTranscript(lines, energies, thresholds);
    const auto prompt =
        storyPrompt({5.0, style, thresholds, lines.empty() ? 0.0 : lines.back().end, "{transcript}", annotated});
    // Foreign text that looks like a placeholder is not filled in.
    fuzzing::require(prompt.find(style) != std::string::npos && prompt.find(annotated) != std::string::npos);
    fuzzing::require(prompt.find("{transcript}") != std::string::npos && prompt.ends_with("}"));

    fuzzing::require(transcriptText({lines, "en"}).starts_with("# Full Transcript\n\n"));
    const std::vector<UsedSegment> used;
    fuzzing::require(coverageOf(used, lines).usedSeconds == 0.0);
    (void)markedTranscript(lines, used);
}
