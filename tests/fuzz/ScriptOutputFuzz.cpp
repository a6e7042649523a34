// What a script printed: read in each of the ways in which it is asked for.

#include "Fuzzing.h"
#include "base/Text.h"
#include "steps/ScriptLines.h"
#include "steps/UsedFootage.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    for (const auto& line : readScriptLines(text)) {
        if (line.kind == ScriptLineKind::success)
            (void)timelineClipsOf(line.text);
    }
    fuzzing::require(successAnywhere(text).has_value() == (text.find("SUCCESS:") != std::string_view::npos));
    fuzzing::require(withoutErrorPrefix(text).size() <= text.size());
    for (const auto& line : answerLines(text))
        fuzzing::require(!line.empty());
    if (const auto paths = mediaPathsOf(text))
        fuzzing::require(!paths->empty() && !beginsWithError(text));
    if (const auto clips = timelineClipsOf(text)) {
        const auto used = mapTimelineClipsToTranscript(*clips, {"/a.wav", "/b.wav"});
        fuzzing::require(used.size() <= clips->size());
        const std::vector<TranscriptSegment> lines = {{0.0, 1.0, std::string(text), "en"}};
        const auto prompt = auditPrompt(clips->size(), coverageOf(used, lines), markedTranscript(lines, used));
        fuzzing::require(prompt.ends_with("}"));
    }
}
