// The story of a saved project for other editing systems. The sample is mined once for all the tests here.

#include "base/Text.h"
#include "endtoend/MineTest.h"
#include "support/GoldenFile.h"

#include <filesystem>

namespace zuvo::endtoend {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string project = "Dropped Files (2)";

class ExportTest : public MineTest {
protected:
    static void SetUpTestSuite() {
        shared() = std::make_unique<World>();
        auto words = samplePaths();
        words.insert(words.begin(), "mine");
        EXPECT_EQ(shared()->zuvo(words).status, 0);
        // Only what the project holds may be needed from here on.
        std::filesystem::remove_all(shared()->cache());
    }
    static void TearDownTestSuite() { shared().reset(); }

    static std::unique_ptr<World>& shared() {
        static std::unique_ptr<World> world;
        return world;
    }

    World& mined = *shared();

    void exportStory(std::vector<std::string> words) {
        words.insert(words.begin(), "export");
        words.insert(words.end(), {"--project", project});
        ending = mined.zuvo(words);
    }

    /// The file that the export names, with the place of the sample taken out.
    [[nodiscard]] std::string written(const std::string& name) const {
        EXPECT_EQ(ending.output, mined.exports(project, name) + "\n");
        return replaceAll(bytesOf(mined.exports(project, name)), sampleFolder(), "/sample");
    }
};

} // namespace

TEST_F(ExportTest, theSampleAsAnEditDecisionList) {
    exportStory({"edl"});
    thenItEndsWith(0);
    tests::expectGolden(written("story_edit.edl"), "endtoend/story_edit.edl");
}

TEST_F(ExportTest, theSampleAsFcpxml) {
    exportStory({"fcpxml"});
    thenItEndsWith(0);
    tests::expectGolden(written("story_edit.fcpxml"), "endtoend/story_edit.fcpxml");
}

TEST_F(ExportTest, theSampleAsXmeml) {
    exportStory({"premiere"});
    thenItEndsWith(0);
    tests::expectGolden(written("story_edit_premiere.xml"), "endtoend/story_edit_premiere.xml");
}

TEST_F(ExportTest, theRateIsTheOneAskedFor) {
    exportStory({"fcpxml", "--fps", "25"});
    thenItEndsWith(0);
    EXPECT_THAT(written("story_edit.fcpxml"), HasSubstr("frameDuration=\"100/2500s\""));
    exportStory({"premiere", "--fps=29.97"});
    EXPECT_THAT(written("story_edit_premiere.xml"),
                AllOf(HasSubstr("<timebase>31</timebase>"), HasSubstr("<ntsc>TRUE</ntsc>")));
}

TEST_F(ExportTest, nothingIsWrittenBesideTheExport) {
    exportStory({"edl"});
    EXPECT_FALSE(exists(mined.cache("probe_results.json")));
    EXPECT_THAT(ending.errors, testing::IsEmpty());
}

TEST_F(ExportTest, anUnknownProjectIsAFailureWithAMessage) {
    ending = world.zuvo({"export", "edl", "--project", "Film"});
    thenItEndsWith(1);
    EXPECT_EQ(ending.errors, "zuvo: there is no project called \"Film\"; zuvo projects lists them\n");
}

TEST_F(ExportTest, aProjectWithoutAStoryIsAFailureWithAMessage) {
    world.folder.write("home/Library/Application Support/ZuvoManager/exports/Film/project.json",
                       R"({"timeline": "Film", "createdAt": 1.0, "language": "en", "mediaPaths": [], "transcript": [],
                           "targetMinutes": 5.0})");
    ending = world.zuvo({"export", "edl", "--project", "Film"});
    thenItEndsWith(1);
    EXPECT_EQ(ending.errors, "zuvo: the project \"Film\" holds no story; mine it with --reload first\n");
}

TEST_F(ExportTest, aFolderThatCannotBeWrittenIsNamedInThePlatformsWords) {
    const auto file = givenFootage("talk.wav");
    givenTranscript();
    givenStory();
    mine({file});
    std::filesystem::create_directory(world.exports("talk", "story_edit.edl"));
    ending = world.zuvo({"export", "edl", "--project", "talk"});
    thenItEndsWith(1);
    EXPECT_THAT(ending.errors, AllOf(HasSubstr("story_edit.edl could not be written: "), HasSubstr("directory")));
}

TEST_F(ExportTest, footageThatIsGoneIsExportedAsAFileOfWhichNothingIsKnown) {
    const auto file = givenFootage("talk.wav");
    givenTranscript();
    givenStory();
    mine({file});
    std::filesystem::remove(file);
    ending = world.zuvo({"export", "fcpxml", "--project", "talk"});
    thenItEndsWith(0);
    EXPECT_THAT(bytesOf(world.exports("talk", "story_edit.fcpxml")), HasSubstr("name=\"talk.wav\""));
}

} // namespace zuvo::endtoend
