#include "steps/StoryPrompt.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <array>
#include <string_view>

namespace zuvo {

namespace {

constexpr double secondsInAMinute = 60.0;

/// The instruction with its placeholders in braces. The braces of its example object belong to the text: only the
/// names that `storyPrompt` fills are placeholders.
constexpr std::string_view storyPromptTemplate =
    R"PROMPT(You are an expert audio editor and story architect. Your job: select the best moments from this recording to build a compelling {targetMinutesInt}-minute story.

STYLE: {style}

## WHAT YOU'RE LOOKING AT

This is a transcript where EVERY line has an energy indicator showing how loud the audio is at that moment:

🔊 = LOUD — someone is speaking directly into the microphone (on-mic, close, clear)
🔉 = medium — audible but not the primary speaker (could be secondary mic, or speaking at distance)
🔇 = quiet — background audio, distant conversation, ambient (off-mic)

Energy stats: {loud} loud segments, {medium} medium, {quiet} quiet

## YOUR TASK

1. **ANALYZE THE SCENE**: Read the transcript and energy levels to understand:
   - How many speakers are there?
   - Who is the primary subject? (typically the person who speaks 🔊 LOUD for extended periods with substantive content)
   - Who is crew/interviewer? (typically the person who speaks 🔇 quiet or 🔉 medium with short questions/directions)
   - What language(s) are being spoken?

2. **SELECT ONLY ON-MIC PRIMARY SPEAKER MOMENTS**:
   - ONLY select time ranges where the audio is consistently 🔊 LOUD
   - NEVER include time ranges where the audio drops to 🔇 quiet — those are crew/background
   - If a segment has mixed energy (starts 🔊 then drops to 🔇), trim it to only the 🔊 portion
   - The waveform in the final edit must be consistently full/loud — NO dips, NO quiet sections

3. **BUILD A STORY**: Arrange selected moments into a narrative arc with chapters.

## CRITICAL RULE: ENERGY = TRUTH

The energy level is the GROUND TRUTH of who is speaking on-mic. Text content can be misleading (someone far away might say something interesting, but they're off-mic and will sound terrible in the edit).

**If a line is 🔇 quiet → DO NOT SELECT IT, period.**
**If a line is 🔉 medium → only select if it's surrounded by 🔊 LOUD lines from the same speaker.**
**Only 🔊 LOUD segments make a clean, professional edit.**

Your segments must be CONTIGUOUS runs of 🔊 lines. When the energy drops, that's your cut point.

## SOURCE INFO
- Total duration: {totalMinutes} min ({totalSeconds}s)
- Source language: {sourceLanguage}
- Target edit: {targetMinutesInt} min ({targetSecondsInt}s)

## TRANSCRIPT (energy-annotated)
{transcript}

## SELECTION RULES
1. ONLY select contiguous runs of 🔊 LOUD segments. NEVER cross into 🔇 quiet regions.
2. Each segment: 8-30 seconds. Ideal: 12-25 seconds.
3. Total duration ≈ {targetSecondsInt}s (within 15%).
4. Skip the first 1-2 seconds of each speaking turn (hesitations, false starts).
5. End at natural thought completions — before trailing off.
6. Prefer rich, emotional, descriptive, first-person content.
7. Avoid meta-conversation ("let's try again", "can you repeat", "the answers can be shorter").
8. Avoid scripted/directed retakes — if someone gives instructions right before, skip that take.
9. Build a STORY — narrative arc with chapters, not random clips.

## OUTPUT FORMAT
Return ONLY a JSON object (no markdown, no code fences):
{
    "segments": [
        {
            "index": 0,
            "startTime": 125.5,
            "endTime": 150.2,
            "sourceClip": "source",
            "transcript": "original language text from this time range",
            "translation": "natural English translation (flowing, readable subtitle)",
            "chapter": "Chapter Name"
        }
    ],
    "structure": {
        "acts": [{"name": "Act 1: Title", "segments": [0, 1, 2]}],
        "totalDuration": 298.5
    },
    "subtitles": [
        {"startTime": 125.5, "endTime": 130.1, "text": "English subtitle card"}
    ],
    "estimatedDuration": 298.5
})PROMPT";

} // namespace

std::string storyPrompt(const StoryPromptInput& input) {
    const double targetSeconds = input.targetMinutes * secondsInAMinute;
    const std::array<Placeholder, 10> placeholders = {{
        {"{targetMinutesInt}", std::to_string(truncated(input.targetMinutes))},
        {"{targetSecondsInt}", std::to_string(truncated(targetSeconds))},
        {"{style}", input.style},
        {"{loud}", std::to_string(input.thresholds.loud)},
        {"{medium}", std::to_string(input.thresholds.medium)},
        {"{quiet}", std::to_string(input.thresholds.quiet)},
        {"{totalMinutes}", fixedText(input.totalDuration / secondsInAMinute, 0)},
        {"{totalSeconds}", fixedText(input.totalDuration, 0)},
        {"{sourceLanguage}", input.sourceLanguage},
        {"{transcript}", input.transcript},
    }};
    return fillPlaceholders(storyPromptTemplate, placeholders);
}

} // namespace zuvo
