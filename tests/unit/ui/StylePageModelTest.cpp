#include "ui/StylePageModel.h"

#include "unit/ui/FlowModelFixture.h"

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class StylePage : public FlowModelFixture {
protected:
    StylePage() { page.setFlow(flow.get()); }

    StylePageModel page;
};

struct SegmentsCase {
    double minutes;
    double pace;
    std::int64_t segments;
};

} // namespace

TEST_F(StylePage, aPaceOfOneWithFiveMinutesGivesThirtySegmentsAndOneOfZeroGivesFive) {
    page.moveSlider(0, 1.0);
    EXPECT_EQ(page.estimatedOutput(), QStringLiteral("~5 min · ~30 segments"));
    page.moveSlider(0, 0.0);
    EXPECT_EQ(page.estimatedOutput(), QStringLiteral("~5 min · ~5 segments"));
}

TEST_F(StylePage, aVeryShortTargetStillShowsOneSegment) {
    flow->setTargetMinutes(0.1);
    EXPECT_EQ(page.estimatedOutput(), QStringLiteral("~0 min · ~1 segments"));
}

TEST(StylePageEstimate, segmentsAreWholeAndAtLeastOne) {
    const SegmentsCase cases[] = {
        {5.0, 0.5, 8},    // 300 / 35 = 8.57
        {5.0, 0.15, 5},   // 300 / 52.5 = 5.7
        {30.0, 1.0, 180}, // 1800 / 10
        {0.0, 0.5, 1},    {-3.0, 0.5, 1},
    };
    for (const auto& one : cases)
        EXPECT_EQ(StylePageModel::estimatedSegments(one.minutes, one.pace), one.segments)
            << one.minutes << " " << one.pace;
}

TEST_F(StylePage, inMagicModeTheSlidersKeepTheirValuesForTheRun) {
    page.moveSlider(2, 0.9);
    page.toggleMagicMode();
    EXPECT_TRUE(flow->isMagicMode());
    EXPECT_EQ(flow->styleSliders().emotion, 0.9);
    EXPECT_EQ(page.mainText(), QStringLiteral("Release the Canary"));
    page.toggleMagicMode();
    EXPECT_EQ(page.mainText(), QStringLiteral("Start Mining"));
}

TEST_F(StylePage, aPresetBringsItsSliders) {
    page.pressPreset(QStringLiteral("campfire"));
    EXPECT_EQ(flow->selectedPresetId(), "campfire");
    EXPECT_EQ(page.sliderTexts().join(QLatin1Char(' ')), QStringLiteral("15% 30% 60% 90% 20% 90%"));
}

TEST_F(StylePage, aPressOnTheChosenPresetLetsItGoAndLeavesTheSliders) {
    page.pressPreset(QStringLiteral("campfire"));
    page.pressPreset(QStringLiteral("campfire"));
    EXPECT_EQ(flow->selectedPresetId(), std::nullopt);
    EXPECT_EQ(page.selectedPresetId(), QString());
    EXPECT_EQ(flow->styleSliders().pace, 0.15);
}

TEST_F(StylePage, anotherPresetTakesThePlaceOfTheFirst) {
    page.pressPreset(QStringLiteral("campfire"));
    page.pressPreset(QStringLiteral("sizzle"));
    EXPECT_EQ(flow->selectedPresetId(), "sizzle");
    EXPECT_EQ(flow->styleSliders().pace, 0.95);
    page.pressPreset(QStringLiteral("no such"));
    EXPECT_EQ(flow->selectedPresetId(), "sizzle");
}

TEST_F(StylePage, movingASliderLeavesThePresetAlone) {
    page.pressPreset(QStringLiteral("campfire"));
    page.moveSlider(0, 0.8);
    EXPECT_EQ(flow->selectedPresetId(), "campfire");
    EXPECT_EQ(flow->styleSliders().pace, 0.8);
    EXPECT_EQ(flow->styleSliders().silence, 0.9);
    page.moveSlider(6, 0.1);
    page.moveSlider(-1, 0.1);
    EXPECT_EQ(page.sliderTexts().join(QLatin1Char(' ')), QStringLiteral("80% 30% 60% 90% 20% 90%"));
}

TEST_F(StylePage, notesAndReferenceAreTheFlows) {
    page.setDirectorNotes(QStringLiteral("Más luz"));
    page.setReferenceURL(QStringLiteral("https://example.org/film"));
    EXPECT_EQ(flow->directorNotes(), "Más luz");
    EXPECT_EQ(flow->referenceURL(), "https://example.org/film");
    EXPECT_TRUE(page.hasNotes());
    flow->setDirectorNotes("");
    EXPECT_FALSE(page.hasNotes());
}

TEST_F(StylePage, thereAreEightPresetsAndSixSliders) {
    EXPECT_EQ(StylePageModel::presets().size(), 8);
    EXPECT_EQ(StylePageModel::presets().constFirst().toMap().value(QStringLiteral("name")).toString(),
              QStringLiteral("Cinéma Vérité"));
    EXPECT_EQ(StylePageModel::sliderDefinitions().size(), 6);
    EXPECT_EQ(page.sliderValues().size(), 6);
    EXPECT_FALSE(page.showSliders());
}

TEST_F(StylePage, backAndOnLeadToTheirPages) {
    flow->advanceTo(MineStep::style);
    page.startMining();
    EXPECT_EQ(flow->currentStep(), MineStep::processing);
    page.goBack();
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
}

TEST_F(StylePage, withoutAFlowNothingHappens) {
    flow.reset();
    page.startMining();
    page.toggleMagicMode();
    page.pressPreset(QStringLiteral("campfire"));
    EXPECT_EQ(page.estimatedOutput(), QString());
}
