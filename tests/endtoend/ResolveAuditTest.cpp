// The audit of a cut of the sample interview, with the mine that it needs beforehand.

#include "endtoend/MineTest.h"
#include "endtoend/ResolveWorlds.h"

namespace zuvo::endtoend {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class ResolveAuditTest : public MineTest {
protected:
    ResolveAuditTest() {
        // A cut that uses the first 30 s of the first file alone; the second file lies on the timeline too.
        auto resolve = resolveWithSample("Cut");
        const auto paths = samplePaths();
        resolve["timelines"][0]["startTimecode"] = "00:00:00:00";
        resolve["timelines"][0]["tracks"]["audio"][0] = Json::array(
            {{{"clip", paths[0]}, {"start", 0}, {"end", 720}}, {{"clip", paths[1]}, {"start", 720}, {"end", 744}}});
        world.givenResolve(resolve);
    }
};

} // namespace

TEST_F(ResolveAuditTest, aMineBeforehandLetsTheCutBeAudited) {
    ending = world.zuvo({"audit", "--timeline", "Cut", "--mine-first"});
    thenItEndsWith(0);
    thenLogHas({"✓ Complete — we found gems!", "$ zuvo audit --timeline Cut",
                "Reading existing timeline from Resolve...", "✓ Found 2 clips using 2 source files",
                "✓ Found 2 total source files in media pool", "⛏ Loading cached transcripts..."});
    // 720 and 24 frames at 24 frames a second, of 63.1 s and 65.3 s.
    EXPECT_THAT(ending.output, HasSubstr("  Used: 31.0s / 12"));
    thenLogHas({"⛏ Claude analyzing for buried gold...", "💎 Found 3 gold moments · 0 redundancies"});
    EXPECT_THAT(ending.output, AllOf(HasSubstr("✓ Audit complete!\n\nCoverage 2"), HasSubstr("\nBuried gold (3)\n"),
                                     HasSubstr("\nSaid twice (0)\n"), HasSubstr("\nMissing themes (3)\n")));
    EXPECT_EQ(messagesRequests(), 2U);
    EXPECT_THAT(prompt(1),
                AllOf(HasSubstr("An editor cut together 2 clips"), HasSubstr("\n[USED] ["), HasSubstr("\n[UNUSED] [")));
}

TEST_F(ResolveAuditTest, theReportIsAnEventOfItsOwn) {
    ending = world.zuvo({"audit", "--timeline", "Cut", "--mine-first", "--json"});
    thenItEndsWith(0);
    const auto lines = linesOf(ending.output);
    const auto report = Json::parse(lines.at(lines.size() - 2));
    EXPECT_EQ(report.at("event"), "report");
    EXPECT_EQ(report.at("report").at("buriedGold").size(), 3U);
    const auto end = Json::parse(lines.back());
    EXPECT_EQ(end.at("event"), "end");
    EXPECT_EQ(end.at("step"), "complete");
}

TEST_F(ResolveAuditTest, withoutATranscriptFromThisStartItFails) {
    ending = world.zuvo({"audit", "--timeline", "Cut"});
    thenItEndsWith(1);
    thenLogEndsWith({"⛏ Loading cached transcripts...",
                     "✗ No cached transcripts found. Run Full Mine or Story Mine first to generate transcripts."});
    EXPECT_EQ(messagesRequests(), 0U);
}

TEST_F(ResolveAuditTest, aTimelineThatIsNotThereFails) {
    ending = world.zuvo({"audit", "--timeline", "Missing"});
    thenItEndsWith(1);
    thenLogEndsWith({"  ✗ Timeline not found", "✗ Could not read timeline clips from Resolve"});
}

TEST_F(ResolveAuditTest, aMineThatFailsIsNotFollowedByAnAudit) {
    world.services.fail(standin::Service::messages, standin::Failure::status(500));
    ending = world.zuvo({"audit", "--timeline", "Cut", "--mine-first"});
    thenItEndsWith(1);
    thenLogLacks("zuvo audit --timeline");
}

TEST_F(ResolveAuditTest, aModelThatAnswersInAnotherShapeEndsTheAudit) {
    for (const char* reply : {R"({"coveragePercent": "much"})", "I would rather not.",
                              R"({"coveragePercent": 1, "usedSegments": [], "buriedGold": [], "redundancies": [],
                                  "alternates": [], "themeGaps": [], "confidenceScore": 5})"}) {
        world.services.failNothing();
        world.services.fail(standin::Service::messages, standin::Failure::reply(reply), standin::Occasion::only(2));
        ending = world.zuvo({"audit", "--timeline", "Cut", "--mine-first"});
        thenItEndsWith(1);
        EXPECT_THAT(ending.output, HasSubstr("  JSON decode error: "));
        thenLogLacks("Recovered");
        thenLogEndsWith({"✗ Claude analysis failed"});
    }
}

} // namespace zuvo::endtoend
