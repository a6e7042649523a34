#include "fakes/pipeline/PipelineFixture.h"

#include "resolve/Scripts.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class TimelineMedia : public PipelineFixture {
protected:
    std::optional<std::vector<std::string>> media(const ProcessOutcome& outcome, const std::string& name = "Day 1") {
        tools->when(call("python3", {}), outcome);
        return ended(pipeline->getTimelineMedia(name));
    }
};

} // namespace

TEST_F(TimelineMedia, areThePathsThatTheScriptPrints) {
    EXPECT_THAT(media(printed("/v/A b.wav\n /v/ü.mov \r\n\n"), "My \"cut\"").value_or(std::vector<std::string>()),
                ElementsAre("/v/A b.wav", "/v/ü.mov"));
    ASSERT_THAT(tools->requests, SizeIs(1));
    EXPECT_THAT(tools->requests[0].arguments, ElementsAre("-c", timelineMediaScript("/resolve/Modules", "My \"cut\"")));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(TimelineMedia, aFailureLaterInTheOutputIsNoPath) {
    EXPECT_THAT(media(printed("/v/a.wav\nERROR:late\n")).value_or(std::vector<std::string>()), ElementsAre("/v/a.wav"));
}

TEST_F(TimelineMedia, aTimelineThatIsNotThereIsNothingAndNotAnEmptyList) {
    EXPECT_EQ(media(printed("")), std::nullopt);
    EXPECT_EQ(media(printed("\n")), std::nullopt);
}

TEST_F(TimelineMedia, resolveThatDoesNotAnswerIsNothing) {
    EXPECT_EQ(media(printed("ERROR:NOT_CONNECTED\n")), std::nullopt);
    EXPECT_EQ(media(printed("", false)), std::nullopt);
    EXPECT_EQ(media(notLaunched()), std::nullopt);
    EXPECT_EQ(media(printed("/v/\xff.wav\n")), std::nullopt);
}

TEST_F(TimelineMedia, aNameThatWouldBreakOutOfItsQuotesIsNeverRun) {
    for (const char* name : {"a\nb", "a\\", "a\\\"; import os #"})
        EXPECT_EQ(media(printed("/v/a.wav\n"), name), std::nullopt);
    EXPECT_THAT(tools->requests, IsEmpty());
}
