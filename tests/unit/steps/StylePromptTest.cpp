#include "steps/StylePrompt.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

const std::string middleLines = "Moderate pace\nBalanced structure\nModerate emotion\nMedium length segments\n"
                                "Moderate boldness\nBalanced silence";
const std::string magicLine =
    "MAGIC MODE: Listen to the content and decide the best style yourself. Match the tone of the speaker and subject "
    "matter. Explain your style choice in the results.";

std::string withSliders(const StyleSliders& sliders) {
    return buildStylePrompt(sliders, std::nullopt, false, "");
}

TEST(StylePrompt, theDefaultSlidersAreAllMiddleBoldnessIncluded) {
    EXPECT_EQ(withSliders({}), middleLines);
}

TEST(StylePrompt, everySliderHasALowPhrase) {
    EXPECT_EQ(withSliders({0.0, 0.0, 0.0, 0.0, 0.0, 0.0}),
              "Meditative, slow\nLoose, freeform\nReserved, understated\nTight cuts, short segments\n"
              "Conservative, safe choices\nFill gaps, keep moving");
}

TEST(StylePrompt, everySliderHasAHighPhrase) {
    EXPECT_EQ(withSliders({1.0, 1.0, 1.0, 1.0, 1.0, 1.0}),
              "Fast-paced, energetic\nRigid, structured\nRaw, emotional\nExtended, breathing room\n"
              "Bold, unexpected choices\nLet it breathe, embrace silence");
}

TEST(StylePrompt, exactlyTheBoundsAreMiddle) {
    EXPECT_EQ(withSliders({0.3, 0.7, 0.3, 0.7, 0.3, 0.7}), middleLines);
}

TEST(StylePrompt, aSilenceOf0Point7IsBalancedAndOneJustAboveBreathes) {
    StyleSliders sliders;
    sliders.silence = 0.7;
    EXPECT_THAT(withSliders(sliders), testing::EndsWith("\nBalanced silence"));
    sliders.silence = 0.70001;
    EXPECT_THAT(withSliders(sliders), testing::EndsWith("\nLet it breathe, embrace silence"));
}

TEST(StylePrompt, justBelowTheLowBoundIsLow) {
    StyleSliders sliders;
    sliders.pace = 0.29999;
    EXPECT_THAT(withSliders(sliders), testing::StartsWith("Meditative, slow\n"));
}

TEST(StylePrompt, aPresetAddsItsBaseLine) {
    EXPECT_EQ(buildStylePrompt(findPreset("campfire")->sliders, "campfire", false, ""),
              "Base style: Campfire — Meditative, slow burn, poetic\nMeditative, slow\nBalanced structure\n"
              "Moderate emotion\nExtended, breathing room\nConservative, safe choices\n"
              "Let it breathe, embrace silence");
}

TEST(StylePrompt, thePresetCorporateHasModerateEmotionAndSafeChoices) {
    EXPECT_EQ(buildStylePrompt(findPreset("corporate")->sliders, "corporate", false, ""),
              "Base style: Corporate — Tight, message-driven, clear arc\nModerate pace\nRigid, structured\n"
              "Moderate emotion\nTight cuts, short segments\nConservative, safe choices\nFill gaps, keep moving");
}

TEST(StylePrompt, theSlidersCountAndNotThePresetsOwnValues) {
    EXPECT_EQ(buildStylePrompt({}, "sizzle", false, ""),
              "Base style: Sizzle — Fast, high energy, best moments\n" + middleLines);
}

TEST(StylePrompt, anUnknownPresetAddsNoBaseLine) {
    EXPECT_EQ(buildStylePrompt({}, "unknown-id", false, ""), middleLines);
    EXPECT_EQ(buildStylePrompt({}, "", false, ""), middleLines);
}

TEST(StylePrompt, notesOfOnlyBlanksAddNothing) {
    EXPECT_EQ(buildStylePrompt({}, std::nullopt, false, "   "), middleLines);
    EXPECT_EQ(buildStylePrompt({}, std::nullopt, false, " \n\t\u00A0\u2028 "), middleLines);
}

TEST(StylePrompt, notesStandUnderAHeadingAfterAnEmptyLine) {
    EXPECT_EQ(buildStylePrompt({}, std::nullopt, false, "\n  Keep the dog.\nNo music. \n"),
              middleLines + "\n\nDIRECTOR'S NOTES (highest priority — follow these instructions):\n"
                            "Keep the dog.\nNo music.");
}

TEST(StylePrompt, magicModeWithNotesHasTheMagicLineAndTheNotesAfterAnEmptyLine) {
    EXPECT_EQ(buildStylePrompt({}, std::nullopt, true, "Keep the dog."),
              magicLine + "\n\nDIRECTOR'S NOTES (highest priority — follow these instructions):\nKeep the dog.");
}

TEST(StylePrompt, magicModeIgnoresPresetAndSliders) {
    EXPECT_EQ(buildStylePrompt({1.0, 1.0, 1.0, 1.0, 1.0, 1.0}, "campfire", true, ""), magicLine);
}

} // namespace
} // namespace zuvo
