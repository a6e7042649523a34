// Each of the eight scripts in a real Python against the stand-in for Resolve, its lines read by those who ask for
// them.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"
#include "endtoend/ResolveWorlds.h"
#include "resolve/ResolveBridge.h"

namespace zuvo::endtoend {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ResolveScriptsTest : public MineTest {
protected:
    ResolveScriptsTest() : inside(world) {
        givenResolve(Json::object());
        inside.platform.environment.resolveScriptLib = fakeResolveFolder();
        inside.pipeline = LocalPipeline::create(inside.platform, inside.timeouts);
        bridge = ResolveBridge::create(inside.platform);
    }

    /// Children of this process inherit its own variables.
    void givenResolve(const Json& resolve) {
        world.givenResolve(resolve);
        for (const char* name : {"HOME", "FAKE_RESOLVE_WORLD", "FAKE_RESOLVE_LOG", "PYTHONDONTWRITEBYTECODE"})
            qputenv(name, world.environment.value(QString::fromLatin1(name)).toUtf8());
    }

    void givenConnection() {
        tests::runToEnd(bridge->connect());
        ASSERT_TRUE(bridge->isConnected()) << bridge->statusMessage();
    }

    std::optional<std::vector<std::string>> media(const std::string& name) {
        return tests::runToEnd(inside.pipeline->getTimelineMedia(name));
    }

    std::optional<std::vector<TimelineClip>> clips(const std::string& name) {
        return tests::runToEnd(inside.pipeline->readTimelineClips(name));
    }

    InProcess inside;
    std::shared_ptr<ResolveBridge> bridge;
};

} // namespace

TEST_F(ResolveScriptsTest, theProjectIsConnectedByItsName) {
    givenResolve({{"project", "Film — 川 \"1\""}});
    givenConnection();
    EXPECT_EQ(bridge->statusMessage(), "Connected to Film — 川 \"1\"");
}

TEST_F(ResolveScriptsTest, resolveWithoutAProjectOrNotRunningShowsItsToken) {
    givenResolve({{"project", nullptr}});
    tests::runToEnd(bridge->connect());
    EXPECT_EQ(bridge->statusMessage(), "NO_PROJECT\n");
    givenResolve({{"running", false}});
    tests::runToEnd(bridge->connect());
    EXPECT_EQ(bridge->statusMessage(), "NOT_CONNECTED\n");
    EXPECT_FALSE(bridge->isConnected());
}

TEST_F(ResolveScriptsTest, theTimelinesAreListed) {
    givenResolve({{"timelines", {{{"name", "Cut 2"}}, {{"name", "Cut 1"}}}}});
    givenConnection();
    tests::runToEnd(bridge->getTimelines());
    EXPECT_THAT(bridge->timelines(), ElementsAre("Cut 2", "Cut 1"));
}

TEST_F(ResolveScriptsTest, audioHasAPlaceAndTheTimelineBecomesCurrent) {
    givenResolve({{"timelines", {{{"name", "Cut 2"}}, {{"name", "It's Day 1"}}}}, {"currentTimeline", "Cut 2"}});
    givenConnection();
    EXPECT_EQ(tests::runToEnd(bridge->extractAudio("It's Day 1")), world.cache("audio_export.wav"));
    EXPECT_FALSE(exists(world.cache("audio_export.wav")));
    EXPECT_TRUE(exists(world.cache()));
    EXPECT_EQ(world.resolve().at("currentTimeline"), "It's Day 1");
    EXPECT_EQ(tests::runToEnd(bridge->extractAudio("Missing")), std::nullopt);
}

TEST_F(ResolveScriptsTest, theBridgeMakesAnEmptyTimelineOnce) {
    givenConnection();
    tests::runToEnd(bridge->buildTimeline(MiningResults()));
    ASSERT_THAT(bridge->timelines(), SizeIs(1));
    EXPECT_THAT(bridge->timelines()[0], HasSubstr("Zuvo Mining - "));
    EXPECT_EQ(world.resolve().at("currentTimeline"), bridge->timelines()[0]);

    inside.platform.clock = [name = bridge->timelines()[0]] {
        return QDateTime::fromString(QString::fromStdString(name.substr(14, 19)),
                                     QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    };
    inside.platform.clock = [clock = inside.platform.clock] {
        auto time = clock();
        time.setTimeSpec(Qt::UTC);
        return time;
    };
    bridge = ResolveBridge::create(inside.platform);
    givenConnection();
    EXPECT_THROW(tests::runToEnd(bridge->buildTimeline(MiningResults())), ResolveBridgeError);
}

TEST_F(ResolveScriptsTest, theMediaOfATimelineComeSortedFromAllTracks) {
    const Json clips = {clipOf("/v/b.wav", "00:01:00:00"), clipOf("/v/a é.mov", "00:01:00:00"),
                        clipOf("", "00:01:00:00")};
    givenResolve({{"mediaPool", {{"clips", clips}}},
                  {"timelines",
                   {{{"name", "Cut"}},
                    {{"name", "Day \"1\" 🎬"},
                     {"tracks",
                      {{"audio", {{"/v/b.wav", {{"clip", nullptr}, {"start", 0}, {"end", 5}}}, {"/v/b.wav"}}},
                       {"video", {{"/v/a é.mov"}}}}}}}}});
    EXPECT_THAT(media("Day \"1\" 🎬").value_or(std::vector<std::string>()), ElementsAre("/v/a é.mov", "/v/b.wav"));
    EXPECT_EQ(world.resolve().at("currentTimeline"), "Day \"1\" 🎬");
    EXPECT_EQ(media("Cut"), std::nullopt);
    EXPECT_EQ(media("day \"1\" 🎬"), std::nullopt);
}

TEST_F(ResolveScriptsTest, theClipsOfATimelineComeWithTheirFramesAndLeaveTheCurrentTimeline) {
    auto resolve = resolveWith("Cut", {clipOf("/v/b.wav", "00:01:00:00")});
    resolve["frameRate"] = "25";
    resolve["timelines"][0]["tracks"]["audio"][0] =
        Json::array({{{"clip", "/v/b.wav"}, {"start", 90000}, {"end", 90050}}});
    resolve["timelines"].push_back({{"name", "Other"}});
    resolve["currentTimeline"] = "Other";
    givenResolve(resolve);
    const auto found = clips("Cut");
    ASSERT_TRUE(found);
    ASSERT_THAT(*found, SizeIs(1));
    EXPECT_EQ(found->front().sourceFile, "/v/b.wav");
    EXPECT_EQ(found->front().startFrame, 90000);
    EXPECT_EQ(found->front().endFrame, 90050);
    EXPECT_EQ(found->front().duration, 2.0);
    EXPECT_EQ(world.resolve().at("currentTimeline"), "Other");
    EXPECT_FALSE(clips("Missing"));
    EXPECT_THAT(inside.log(), ElementsAre("  ✗ Timeline not found"));
}

TEST_F(ResolveScriptsTest, aMinedStoryIsBuiltByBothBuilds) {
    const auto file = givenFootage("talk.wav");
    givenTranscript();
    givenStory();
    givenResolve(resolveWith("Day 1", {clipOf(file, "00:02:00:00")}));
    tests::runToEnd(inside.pipeline->run(std::string("Day 1"), MineChoices()), std::chrono::seconds(60));
    EXPECT_EQ(inside.pipeline->buildResult(), "✓ 1/1 clips appended");
    EXPECT_TRUE(tests::runToEnd(inside.pipeline->rebuildTimeline("My \"Cut\"", {file})));
    EXPECT_THAT(inside.log(), Contains("  1 clips appended, 0 failed"));
    EXPECT_EQ(inside.log().back(), "✓ Timeline rebuilt");
    EXPECT_THAT(timelinesNamed(world.resolve(), "Zuvo Build — "), SizeIs(1));
    EXPECT_THAT(timelinesNamed(world.resolve(), "My \"Cut\""), SizeIs(1));
    EXPECT_FALSE(tests::runToEnd(inside.pipeline->rebuildTimeline("My \"Cut\"", {file})));
    EXPECT_THAT(inside.log(), Contains("  ✗ Could not create timeline"));
}

TEST_F(ResolveScriptsTest, pythonInsideANameIsNeverRun) {
    const auto trap = world.folder / "trap";
    const std::vector<std::string> names = {"\"); open('" + trap + "', 'w') #", "\\\"); open('" + trap + "', 'w') #",
                                            "a\n open('" + trap + "', 'w')", "\\", "{__import__('os')}"};
    givenConnection();
    for (const auto& name : names) {
        EXPECT_EQ(media(name), std::nullopt) << name;
        EXPECT_FALSE(clips(name)) << name;
        EXPECT_EQ(tests::runToEnd(bridge->extractAudio(name)), std::nullopt) << name;
    }
    EXPECT_FALSE(exists(trap));
}

TEST_F(ResolveScriptsTest, aTimelineWithPythonInItsNameIsFoundByItsName) {
    const std::string name = "\"); import os; os.abort() #";
    auto resolve = resolveWith(name, {clipOf("/v/b.wav", "00:01:00:00")});
    givenResolve(resolve);
    EXPECT_THAT(media(name).value_or(std::vector<std::string>()), ElementsAre("/v/b.wav"));
}

} // namespace zuvo::endtoend
