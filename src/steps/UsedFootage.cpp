#include "steps/UsedFootage.h"

#include "base/Json.h"
#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>
#include <array>

namespace zuvo {

namespace {

/// What every file is taken to last, in seconds.
constexpr double assumedFileSeconds = 300.0;
/// What every timeline is taken to run at.
constexpr double assumedFramesPerSecond = 24.0;

/// The instruction with its placeholders in braces. The braces of its example object belong to the text: only the
/// names that `auditPrompt` fills are placeholders.
constexpr std::string_view auditPromptTemplate =
    R"PROMPT(You are an expert documentary editor reviewing an existing cut. Your task: find what the editor MISSED.

CONTEXT:
- An editor cut together {clips} clips from this interview
- They used {coverage0}% of the total footage ({used}s out of {total}s)
- Below is the FULL transcript with [USED] and [UNUSED] markers

YOUR JOB:
1. **Buried Gold** — Find 3-8 UNUSED moments that are:
   - Emotionally powerful (humor, pain, insight, surprise)
   - Narratively rich (vivid stories, specific details)
   - Would strengthen the edit if included
2. **Redundancies** — Find moments where the editor made the SAME POINT twice (used the same topic/idea in 2+ clips)
3. **Alternate Takes** — For key USED moments, find UNUSED versions that tell the same story but with more emotion, better pacing, or clearer language
4. **Theme Gaps** — What topics/themes appear in the UNUSED footage that are missing from the edit?
5. **Confidence Score** — Rate 0-100 how comprehensive this edit is (0 = major gaps, 100 = nothing important missing)

FULL TRANSCRIPT:
{transcript}

RULES:
- Each buried gold moment: include exact timestamps, the text, WHY it matters (reason), and emotional weight (1-5)
- Each redundancy: identify both used segments and what they repeat
- Each alternate: compare used vs unused, explain why the alternate is better
- Theme gaps: list as simple strings (e.g., "childhood memories", "career struggles")
- Summary: 2-3 sentences about the overall edit quality and biggest missed opportunities

Return ONLY a JSON object (no markdown, no fences):
{
    "coveragePercent": {coverageValue},
    "usedSegments": [{"startTime": 0, "endTime": 10, "text": "..."}],
    "buriedGold": [
        {
            "startTime": 125.5,
            "endTime": 158.2,
            "text": "transcript excerpt",
            "reason": "why this matters",
            "emotionalWeight": 4
        }
    ],
    "redundancies": [
        {
            "firstStart": 50.0,
            "firstEnd": 65.0,
            "secondStart": 200.0,
            "secondEnd": 215.0,
            "topic": "what they both say"
        }
    ],
    "alternates": [
        {
            "existingStart": 100.0,
            "existingEnd": 120.0,
            "alternateStart": 450.0,
            "alternateEnd": 470.0,
            "alternateText": "the better version",
            "reason": "why it's better"
        }
    ],
    "themeGaps": ["theme 1", "theme 2"],
    "confidenceScore": 75,
    "summary": "Overall assessment..."
})PROMPT";

std::optional<TimelineClip> readClip(const Json& object) {
    auto file = readText(object, "sourceFile");
    const auto start = readInteger(object, "startFrame");
    const auto end = readInteger(object, "endFrame");
    const auto duration = readNumber(object, "duration");
    if (!file || !start || !end || !duration)
        return std::nullopt;
    return TimelineClip{std::move(*file), *start, *end, *duration};
}

bool isUsed(const TranscriptSegment& line, const std::vector<UsedSegment>& used) {
    return std::any_of(used.begin(), used.end(), [&line](const UsedSegment& range) {
        return range.startTime <= line.start && line.end <= range.endTime;
    });
}

} // namespace

std::optional<std::vector<TimelineClip>> timelineClipsOf(std::string_view json) {
    const auto tree = parseForeignJson(json);
    if (!tree || !tree->is_array())
        return std::nullopt;
    std::vector<TimelineClip> clips;
    for (const auto& object : *tree) {
        if (!object.is_object())
            return std::nullopt;
        if (auto clip = readClip(object))
            clips.push_back(std::move(*clip));
    }
    return clips;
}

std::vector<UsedSegment> mapTimelineClipsToTranscript(const std::vector<TimelineClip>& clips,
                                                      std::vector<std::string> mediaPaths) {
    std::sort(mediaPaths.begin(), mediaPaths.end());
    std::vector<UsedSegment> used;
    for (const auto& clip : clips) {
        const auto file = std::find(mediaPaths.begin(), mediaPaths.end(), clip.sourceFile);
        if (file == mediaPaths.end())
            continue;
        const double fileStart = static_cast<double>(file - mediaPaths.begin()) * assumedFileSeconds;
        used.push_back({fileStart + static_cast<double>(clip.startFrame) / assumedFramesPerSecond,
                        fileStart + static_cast<double>(clip.endFrame) / assumedFramesPerSecond,
                        {}});
    }
    return used;
}

Coverage coverageOf(const std::vector<UsedSegment>& used, const std::vector<TranscriptSegment>& lines) {
    constexpr double percent = 100.0;
    Coverage coverage;
    for (const auto& range : used)
        coverage.usedSeconds += range.endTime - range.startTime;
    if (!lines.empty())
        coverage.totalSeconds = lines.back().end;
    coverage.percent = coverage.usedSeconds / coverage.totalSeconds * percent;
    return coverage;
}

std::string markedTranscript(const std::vector<TranscriptSegment>& lines, const std::vector<UsedSegment>& used) {
    std::string text;
    for (const auto& line : lines) {
        text += isUsed(line, used) ? "[USED] [" : "[UNUSED] [";
        text += fixedText(line.start, 1) + "s → " + fixedText(line.end, 1) + "s] " + line.text + "\n";
    }
    return text;
}

std::string auditPrompt(std::size_t clipCount, const Coverage& coverage, const std::string& transcript) {
    const std::array<Placeholder, 6> placeholders = {{
        {"{clips}", std::to_string(clipCount)},
        {"{coverage0}", fixedText(coverage.percent, 0)},
        {"{used}", fixedText(coverage.usedSeconds, 1)},
        {"{total}", fixedText(coverage.totalSeconds, 0)},
        {"{transcript}", transcript},
        {"{coverageValue}", plainText(coverage.percent)},
    }};
    return fillPlaceholders(auditPromptTemplate, placeholders);
}

} // namespace zuvo
