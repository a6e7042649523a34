#include "cli/MineSession.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

using testing::Optional;

SavedProject campfireProject() {
    SavedProject project;
    project.timeline = "talk";
    project.presetId = "campfire";
    project.targetMinutes = 2.5;
    return project;
}

TEST(MineSession, footageIsMinedForFiveMinutesInTheLanguageThatIsHeard) {
    const auto choices = choicesForFootage({});
    EXPECT_EQ(choices.mode, MiningMode::fullMine);
    EXPECT_EQ(choices.language, "auto");
    EXPECT_EQ(choices.story.targetMinutes, 5.0);
    EXPECT_EQ(choices.story.presetId, std::nullopt);
    EXPECT_EQ(choices.story.sliders, StyleSliders());
    EXPECT_FALSE(choices.story.isMagicMode);
    EXPECT_EQ(choices.story.directorNotes, "");
    EXPECT_EQ(choices.story.referenceURL, "");
}

TEST(MineSession, whatIsGivenForFootageHolds) {
    StyleOptions style;
    style.mode = MiningMode::structure;
    style.minutes = 0.5;
    style.language = "es";
    style.presetId = "corporate";
    style.sliders = {{"boldness", 0.75}};
    style.isMagicMode = true;
    style.notes = "Be brief.";
    const auto choices = choicesForFootage(style);
    EXPECT_EQ(choices.mode, MiningMode::structure);
    EXPECT_EQ(choices.language, "es");
    EXPECT_EQ(choices.story.targetMinutes, 0.5);
    EXPECT_THAT(choices.story.presetId, Optional(std::string("corporate")));
    EXPECT_EQ(choices.story.sliders.structure, 0.9) << "of the preset";
    EXPECT_EQ(choices.story.sliders.boldness, 0.75);
    EXPECT_TRUE(choices.story.isMagicMode);
    EXPECT_EQ(choices.story.directorNotes, "Be brief.");
}

TEST(MineSession, aProjectsMinutesAndPresetAreTheDefaults) {
    const auto choices = choicesForProject({}, campfireProject());
    EXPECT_EQ(choices.targetMinutes, 2.5);
    EXPECT_THAT(choices.presetId, Optional(std::string("campfire")));
    EXPECT_EQ(choices.sliders.length, 0.9) << "the preset's value";
}

TEST(MineSession, aSliderStandsOnTopOfTheProjectsPreset) {
    StyleOptions style;
    style.sliders = {{"length", 0.2}};
    const auto choices = choicesForProject(style, campfireProject());
    EXPECT_EQ(choices.sliders.length, 0.2);
    EXPECT_EQ(choices.sliders.silence, 0.9);
}

TEST(MineSession, aPresetGivenTakesTheProjectsPlace) {
    StyleOptions style;
    style.presetId = "sizzle";
    style.minutes = 1.0;
    const auto choices = choicesForProject(style, campfireProject());
    EXPECT_THAT(choices.presetId, Optional(std::string("sizzle")));
    EXPECT_EQ(choices.sliders.length, 0.1);
    EXPECT_EQ(choices.targetMinutes, 1.0);
}

} // namespace
} // namespace zuvo
