// From a timeline in Resolve to a new one, once for all the tests here: the sample interview lies on "Interview Day 1".

#include "endtoend/MineTest.h"
#include "endtoend/ResolveWorlds.h"
#include "endtoend/SrtReader.h"

#include <cmath>
#include <fmt/format.h>
#include <map>
#include <regex>

namespace zuvo::endtoend {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr double framesPerSecond = 24.0;
constexpr std::int64_t timelineStart = 86400; // 01:00:00:00

bool isNameOfABuild(const Json& name) {
    static const std::regex form(R"(Zuvo Build — \d{1,2}:\d\d [AP]M — \d\d:\d\d(:\d\d)? [AP]M)");
    return std::regex_match(name.get<std::string>(), form);
}

/// "00:00:12:05", cut off and not rounded.
std::string timecode(double seconds) {
    const auto whole = static_cast<int>(seconds);
    const auto frames = static_cast<int>((seconds - whole) * framesPerSecond);
    return fmt::format("{:02}:{:02}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60, frames);
}

std::int64_t frames(const std::string& timecode) {
    std::smatch match;
    EXPECT_TRUE(std::regex_match(timecode, match, std::regex(R"((\d\d):(\d\d):(\d\d):(\d\d))"))) << timecode;
    const auto seconds = std::stoi(match[1]) * 3600 + std::stoi(match[2]) * 60 + std::stoi(match[3]);
    return seconds * 24 + std::stoi(match[4]);
}

/// The path in "<MediaPoolItem {path}>".
std::string clipPath(const std::string& object) {
    const std::string beginning = "<MediaPoolItem ";
    EXPECT_TRUE(object.starts_with(beginning)) << object;
    return object.substr(beginning.size(), object.size() - beginning.size() - 1);
}

struct InAndOut {
    std::string path;
    std::string in;
    std::string out;

    friend bool operator==(const InAndOut&, const InAndOut&) = default;
    friend void PrintTo(const InAndOut& range, std::ostream* out) {
        *out << range.path << " " << range.in << "-" << range.out;
    }
};

class ResolveMineTest : public MineTest {
protected:
    static void SetUpTestSuite() {
        shared() = std::make_unique<World>();
        auto& world = *shared();
        world.folder.makeFolder("home/Desktop");
        world.folder.makeFolder("home/Library/Application Support/ZuvoManager/exports/Earlier");
        world.givenResolve(resolveWithSample("Interview Day 1"));
        sharedEnding() = world.zuvo({"mine", "--timeline", "Interview Day 1", "--minutes", "2"});
    }
    static void TearDownTestSuite() { shared().reset(); }

    static std::unique_ptr<World>& shared() {
        static std::unique_ptr<World> world;
        return world;
    }
    static Ending& sharedEnding() {
        static Ending ending;
        return ending;
    }

    World& mined = *shared();
    Json segments = jsonOf(mined.cache("segments.json"));

    ResolveMineTest() { ending = sharedEnding(); }

    [[nodiscard]] Json built() const {
        const auto timelines = timelinesNamed(mined.resolve(), "Zuvo Build — ");
        return timelines.empty() ? Json() : timelines.front();
    }

    /// Where the sample's second file begins in mine time.
    [[nodiscard]] double secondStart() const {
        return jsonOf(mined.cache("probe_results.json")).at("harbour_interview_01.m4a").at("duration");
    }

    /// The range of its file that a moment is.
    [[nodiscard]] InAndOut rangeOf(const Json& segment) const {
        const bool second = segment.at("sourceClip") == "harbour_interview_02.m4a";
        const double offset = second ? secondStart() : 0.0;
        return {samplePaths()[second ? 1 : 0], timecode(segment.at("startTime").get<double>() - offset),
                timecode(segment.at("endTime").get<double>() - offset)};
    }

    [[nodiscard]] std::string srt() const {
        for (const auto& name : namesIn(mined.cache())) {
            if (std::regex_match(name, std::regex(R"(subs_\d+\.srt)")))
                return bytesOf(mined.cache(name));
        }
        ADD_FAILURE() << "no SRT in the cache";
        return {};
    }
};

} // namespace

TEST_F(ResolveMineTest, endsCompleteWithATimelineInResolve) {
    thenItEndsWith(0);
    thenLogHas({"$ zuvo mine --mode full-mine", "Connecting to DaVinci Resolve...",
                "✓ Connected — found 2 source clips", "  → harbour_interview_01.m4a", "  → harbour_interview_02.m4a",
                "📋 Probing 2 source files..."});
    thenLogHas({"Extracting audio from timeline..."});
    const auto number = std::to_string(segments.size());
    thenLogEndsWith({"  ✓ " + number + "/" + number + " clips appended", "✓ Complete — we found gems!"});
}

TEST_F(ResolveMineTest, theTimelineHoldsTheTimeTwiceInItsName) {
    EXPECT_TRUE(isNameOfABuild(built().at("name"))) << built().at("name");
    EXPECT_EQ(mined.resolve().at("currentTimeline"), built().at("name"));
}

TEST_F(ResolveMineTest, everyMomentIsCutAtItsInAndOutInItsFile) {
    std::vector<InAndOut> expected;
    for (const auto& segment : segments)
        expected.push_back(rangeOf(segment));
    ASSERT_GT(expected.size(), 2U);

    std::vector<InAndOut> cut;
    std::map<std::string, InAndOut> marks;
    for (const auto& call : mined.resolveCalls()) {
        const auto& arguments = call.at("arguments");
        if (call.at("method") == "SetClipProperty") {
            auto& range = marks[call.at("object")];
            range.path = clipPath(call.at("object"));
            (arguments.at(0) == "In" ? range.in : range.out) = arguments.at(1);
        }
        if (call.at("method") == "AppendToTimeline" && cut.size() < expected.size())
            cut.push_back(marks[arguments.at(0).at(0)]);
    }
    EXPECT_EQ(cut, expected);
}

TEST_F(ResolveMineTest, theClipsLieOneAfterTheOtherFromTheTimelinesStart) {
    const auto items = built().at("tracks").at("audio").at(0);
    ASSERT_EQ(items.size(), segments.size());
    auto position = timelineStart;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto range = rangeOf(segments[i]);
        EXPECT_EQ(items[i].at("clip"), range.path);
        EXPECT_EQ(items[i].at("start"), position);
        position += frames(range.out) - frames(range.in);
        EXPECT_EQ(items[i].at("end"), position);
    }
}

TEST_F(ResolveMineTest, everyNewChapterIsMarkedInItsColourAtTheReadBackPosition) {
    const std::vector<std::string> colours = {"Orange", "Green", "Purple", "Red", "Cream"};
    const auto items = built().at("tracks").at("audio").at(0);
    const auto markers = built().at("markers");
    std::size_t chapters = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0 && segments[i].at("chapter") == segments[i - 1].at("chapter"))
            continue;
        const auto start = items[i].at("start").get<std::int64_t>();
        const auto marker = markers.at(std::to_string(start - timelineStart));
        EXPECT_EQ(marker.at("name"), segments[i].at("chapter"));
        EXPECT_EQ(marker.at("color"), colours.at(chapters));
        // Its length goes through seconds and back, cut off: that may cost a frame.
        const auto length = items[i].at("end").get<std::int64_t>() - start;
        EXPECT_THAT(marker.at("duration").get<std::int64_t>(), testing::AnyOf(length, length - 1));
        ++chapters;
    }
    EXPECT_GT(chapters, 1U);
}

TEST_F(ResolveMineTest, theCardsFillEachClipToItsEnd) {
    const auto cards = readSrt(srt());
    ASSERT_TRUE(cards);
    const auto items = built().at("tracks").at("audio").at(0);
    const auto length = static_cast<double>(items.back().at("end").get<std::int64_t>() - timelineStart);
    EXPECT_EQ(cards->front().number, 1);
    EXPECT_NEAR(cards->back().end, length / framesPerSecond, 0.04);
    for (std::size_t i = 1; i < cards->size(); ++i) {
        EXPECT_EQ((*cards)[i].number, (*cards)[i - 1].number + 1);
        EXPECT_GE((*cards)[i].start, (*cards)[i - 1].end - 0.0011);
    }
    std::string words;
    for (const auto& card : *cards)
        words += card.text + " ";
    EXPECT_THAT(std::regex_replace(words, std::regex(" +"), " "),
                HasSubstr(segments[0].at("translation").get<std::string>()));
}

TEST_F(ResolveMineTest, theSubtitlesLieInTheCacheOnTheDesktopAndInTheLastExport) {
    EXPECT_EQ(bytesOf(mined.home() + "/Desktop/Zuvo_subtitles.srt"), srt());
    EXPECT_EQ(bytesOf(mined.exports("Interview Day 1", "subtitles.srt")), srt());
    EXPECT_FALSE(exists(mined.exports("Earlier", "subtitles.srt")));
    EXPECT_THAT(built().at("tracks").at("subtitle").at(0), testing::SizeIs(1));
}

TEST_F(ResolveMineTest, everyCardHasACyanMarkerUnlessAChapterStandsThere) {
    std::size_t cyan = 0;
    const auto markers = built().at("markers");
    for (const auto& marker : markers) {
        if (marker.at("color") == "Cyan") {
            ++cyan;
            EXPECT_EQ(marker.at("name"), "");
            EXPECT_NE(marker.at("note"), "");
        }
    }
    std::size_t asked = 0;
    for (const auto& call : mined.resolveCalls())
        asked += call.at("method") == "AddMarker" && call.at("arguments").at(1) == "Cyan" ? 1U : 0U;
    EXPECT_GT(cyan, 5U);
    thenLogHas({"  Added " + std::to_string(asked) + " subtitle markers (Cyan) to timeline"});
}

TEST_F(ResolveMineTest, theClipsAreWholeAgainInTheMediaPool) {
    const auto resolve = mined.resolve();
    std::size_t clips = 0;
    for (const auto& clip : resolve.at("mediaPool").at("clips")) {
        const std::string path = clip.value("File Path", "");
        if (path.ends_with(".srt"))
            continue;
        EXPECT_EQ(clip.at("In"), "00:00:00:00") << path;
        EXPECT_EQ(clip.at("Out"), clip.at("End TC")) << path;
        ++clips;
    }
    EXPECT_EQ(clips, 2U);
}

TEST_F(ResolveMineTest, theBuildLeavesItsTraces) {
    static const std::regex call(R"(buildTimelineFromSegmentsFile called at \d{4}-\d\d-\d\d \d\d:\d\d:\d\d \+0000)");
    EXPECT_TRUE(std::regex_match(bytesOf(mined.cache("build_debug.txt")), call));
    EXPECT_THAT(bytesOf(mined.cache("build_output.txt")),
                AllOf(testing::StartsWith("STDOUT:\nLOG:Using default fps=24.0\n"),
                      testing::EndsWith(" clips appended\n\n\nSTDERR:\n")));
}

// Changes the world of the others: last in the file.
TEST_F(ResolveMineTest, aBuildFollowsTheEditedSegmentsFile) {
    const auto earlier = bytesOf(mined.exports("Interview Day 1", "subtitles.srt"));
    auto edited = Json::array({segments.at(2), segments.at(0)});
    edited[0]["translation"] = "Edited by hand.";
    mined.folder.write("home/Library/Caches/ZuvoManager/segments.json", edited.dump(2));
    mined.folder.makeFolder("home/Library/Application Support/ZuvoManager/exports/Zulu");
    ending = mined.zuvo({"build"});
    thenItEndsWith(0);
    thenLogEndsWith({"  ✓ 2/2 clips appended"});

    const auto timelines = timelinesNamed(mined.resolve(), "Zuvo Build — ");
    ASSERT_EQ(timelines.size(), 2U);
    EXPECT_TRUE(isNameOfABuild(timelines[1].at("name"))) << timelines[1].at("name");
    const auto items = timelines[1].at("tracks").at("audio").at(0);
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].at("clip"), rangeOf(edited[0]).path);
    EXPECT_EQ(items[1].at("clip"), rangeOf(edited[1]).path);
    EXPECT_THAT(bytesOf(mined.exports("Zulu", "subtitles.srt")), HasSubstr("Edited by hand."));
    EXPECT_EQ(bytesOf(mined.exports("Interview Day 1", "subtitles.srt")), earlier);
}

} // namespace zuvo::endtoend
