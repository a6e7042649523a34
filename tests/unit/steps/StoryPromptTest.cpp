#include "steps/StoryPrompt.h"

#include "support/GoldenFile.h"

#include <gmock/gmock.h>
#include <limits>

namespace zuvo {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

StoryPromptInput winterStory() {
    StoryPromptInput input;
    input.targetMinutes = 2.5;
    input.style = "Base style: Campfire — Meditative, slow burn, poetic\nMeditative, slow\nBalanced structure\n"
                  "Moderate emotion\nExtended, breathing room\nConservative, safe choices\n"
                  "Let it breathe, embrace silence";
    input.thresholds.loud = 3;
    input.thresholds.medium = 1;
    input.thresholds.quiet = 2;
    input.totalDuration = 1234.6;
    input.sourceLanguage = "unknown";
    input.transcript = "[0.0-4.5s] 🔇 Are we rolling? {style}\n"
                       "[125.5-131.2s] 🔊 And that was the winter we lost the boat.\n"
                       "[131.2-140.0s] 🔉 Ja, genau – \"the boat\".\n";
    return input;
}

TEST(StoryPrompt, isThisTextToTheByte) {
    tests::expectGolden(storyPrompt(winterStory()), "prompts/story_of_two_and_a_half_minutes.txt");
}

TEST(StoryPrompt, truncatesMinutesAndComputesSecondsFromTheUnroundedValue) {
    const auto prompt = storyPrompt(winterStory());
    EXPECT_THAT(prompt, HasSubstr("a compelling 2-minute story."));
    EXPECT_THAT(prompt, HasSubstr("\n- Target edit: 2 min (150s)\n"));
    EXPECT_THAT(prompt, HasSubstr("\n3. Total duration ≈ 150s (within 15%).\n"));
}

TEST(StoryPrompt, namesAnUnknownSourceLanguage) {
    EXPECT_THAT(storyPrompt(winterStory()), HasSubstr("\n- Source language: unknown\n"));
}

TEST(StoryPrompt, roundsTheLengthOfTheMaterial) {
    auto input = winterStory();
    input.totalDuration = 89.6;
    EXPECT_THAT(storyPrompt(input), HasSubstr("\n- Total duration: 1 min (90s)\n"));
    input.totalDuration = 0.0;
    EXPECT_THAT(storyPrompt(input), HasSubstr("\n- Total duration: 0 min (0s)\n"));
}

TEST(StoryPrompt, leavesTwoEmptyLinesAfterTheTranscript) {
    EXPECT_THAT(storyPrompt(winterStory()), HasSubstr("\"the boat\".\n\n\n## SELECTION RULES\n"));
}

TEST(StoryPrompt, endsInTheClosingBrace) {
    EXPECT_THAT(storyPrompt(winterStory()), EndsWith("\n    \"estimatedDuration\": 298.5\n}"));
}

TEST(StoryPrompt, looksAtNothingTwice) {
    auto input = winterStory();
    input.style = "{transcript}{loud}";
    input.sourceLanguage = "{style}";
    input.transcript = "{style}{targetMinutesInt}{transcript}\n";
    const auto prompt = storyPrompt(input);
    EXPECT_THAT(prompt, HasSubstr("\nSTYLE: {transcript}{loud}\n"));
    EXPECT_THAT(prompt, HasSubstr("\n- Source language: {style}\n"));
    EXPECT_THAT(prompt, HasSubstr("\n{style}{targetMinutesInt}{transcript}\n\n\n## SELECTION RULES"));
}

TEST(StoryPrompt, sendsTheTranscriptWhole) {
    auto input = winterStory();
    input.transcript = std::string(1'000'000, 'x') + "\n";
    EXPECT_THAT(storyPrompt(input), HasSubstr(input.transcript));
}

TEST(StoryPrompt, survivesATargetThatIsNoNumber) {
    auto input = winterStory();
    input.targetMinutes = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THAT(storyPrompt(input), HasSubstr("- Target edit: 0 min (0s)"));
    input.targetMinutes = 1e300;
    EXPECT_THAT(storyPrompt(input), HasSubstr("- Target edit: 9223372036854775807 min (9223372036854775807s)"));
    input.targetMinutes = -std::numeric_limits<double>::infinity();
    EXPECT_THAT(storyPrompt(input), HasSubstr("- Target edit: -9223372036854775808 min (-9223372036854775808s)"));
}

} // namespace
} // namespace zuvo
