#include "model/Modes.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

TEST(PipelineStep, showsTheseTexts) {
    const std::pair<PipelineStep, const char*> rows[] = {
        {PipelineStep::idle, "Idle"},
        {PipelineStep::connecting, "Connecting to Resolve..."},
        {PipelineStep::extracting, "Extracting audio..."},
        {PipelineStep::chunking, "Preparing audio chunks..."},
        {PipelineStep::transcribing, "Transcribing with Whisper..."},
        {PipelineStep::analyzing, "Analyzing story structure..."},
        {PipelineStep::translating, "Translating..."},
        {PipelineStep::building, "Building timeline..."},
        {PipelineStep::complete, "Complete"},
        {PipelineStep::error, "Error"},
    };
    for (const auto& [step, text] : rows)
        EXPECT_EQ(rawValue(step), text);
}

TEST(MiningMode, hasItsCasesInOrder) {
    EXPECT_THAT(allMiningModes, testing::ElementsAre(MiningMode::fullMine, MiningMode::storyMine, MiningMode::structure,
                                                     MiningMode::audit));
}

struct ModeRow {
    MiningMode mode;
    MiningModeTexts texts;
    const char* commandLine;
};

TEST(MiningMode, hasTheseTexts) {
    const ModeRow rows[] = {
        {MiningMode::fullMine,
         {"Full Mine", "Full Mine", "Transcribe → Analyze → Translate → Subtitle → Timeline",
          "Extract audio → transcribe → analyze → translate → build timeline", "accent"},
         "full-mine"},
        {MiningMode::storyMine,
         {"Story Mine", "Story Mine", "Existing transcript → Analyze → Build",
          "Use existing transcript → analyze → build", "gemSapphire"},
         "story-mine"},
        {MiningMode::structure,
         {"Structure", "Structure", "Your selects → Organize → Subtitle", "Organize marked selects → subtitle",
          "gemEmerald"},
         "structure"},
        {MiningMode::audit,
         {"Audit Mine", "Audit", "Existing timeline → Compare to transcript → Find buried gold",
          "Compare existing timeline to full transcripts → find buried gold", "gemAmethyst"},
         "audit-mine"},
    };
    for (const auto& row : rows) {
        const auto& mode = texts(row.mode);
        EXPECT_EQ(mode.rawValue, row.texts.rawValue);
        EXPECT_EQ(mode.modeLabel, row.texts.modeLabel);
        EXPECT_EQ(mode.subtitle, row.texts.subtitle);
        EXPECT_EQ(mode.description, row.texts.description);
        EXPECT_EQ(mode.color, row.texts.color);
        EXPECT_EQ(commandLineForm(row.mode), row.commandLine);
    }
}

TEST(MiningMode, comesFromItsRawValue) {
    for (const auto mode : allMiningModes)
        EXPECT_EQ(miningModeFromRawValue(texts(mode).rawValue), mode);
}

TEST(MiningMode, auditMineIsARawValueAndAuditIsNot) {
    EXPECT_EQ(miningModeFromRawValue("Audit Mine"), MiningMode::audit);
    EXPECT_EQ(miningModeFromRawValue("Audit"), std::nullopt);
}

TEST(MiningMode, anyOtherTextIsNoMode) {
    for (const char* text : {"", "full mine", "Full Mine ", "full-mine", "fullMine", "Structure\n"})
        EXPECT_EQ(miningModeFromRawValue(text), std::nullopt) << text;
}

TEST(SourceMode, hasTheseRawValues) {
    EXPECT_EQ(rawValue(SourceMode::files), "files");
    EXPECT_EQ(rawValue(SourceMode::resolve), "resolve");
}

} // namespace
} // namespace zuvo
