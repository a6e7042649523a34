// Names of somebody else's making that would move a terminal's cursor, reorder a line or pass for a line of their own.

#include "endtoend/MineTest.h"
#include "endtoend/ResolveWorlds.h"

#include <filesystem>

namespace zuvo::endtoend {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// An escape, a line end, an override of the writing direction and a byte that is not text.
const std::string hostile = "cut\x1b[2J\nx\u202Ez\u200F";
const std::string shown = "cut\uFFFD[2J\uFFFDx\uFFFDz\uFFFD";

class ForeignNamesTest : public TalkTest {
protected:
    void givenProject(const std::string& name) {
        Json project = {{"timeline", name}, {"createdAt", 1e9},           {"language", "en"},    {"mediaPaths", {file}},
                        {"transcript", {}}, {"presetId", "sizzle\u202E"}, {"targetMinutes", 5.0}};
        project["transcript"] = Json::array();
        world.folder.write("home/Library/Application Support/ZuvoManager/exports/received/project.json",
                           project.dump());
    }

    void run(const std::vector<std::string>& words, int status) {
        ending = world.zuvo(words);
        thenItEndsWith(status);
    }
};

} // namespace

TEST_F(ForeignNamesTest, aListOfProjectsHasOneLineForEach) {
    givenProject(hostile);
    run({"projects"}, 0);
    EXPECT_THAT(ending.output, HasSubstr("  " + shown + "  (0 moments, target 5.0 min, sizzle\uFFFD)\n"));
    EXPECT_EQ(linesOf(ending.output).size(), 1U);
}

TEST_F(ForeignNamesTest, jsonHasTheNamesAsTheyAre) {
    givenProject(hostile);
    run({"projects", "--json"}, 0);
    EXPECT_EQ(linesOf(ending.output).size(), 1U);
    EXPECT_EQ(Json::parse(ending.output).at("timeline"), hostile);
}

TEST_F(ForeignNamesTest, aListOfTimelinesHasOneLineForEach) {
    world.givenResolve({{"timelines", {{{"name", "evil\u202Etuc \x1b[31m"}}, {{"name", "Cut 1"}}}}});
    run({"timelines"}, 0);
    EXPECT_EQ(ending.output, "evil\uFFFDtuc \uFFFD[31m\nCut 1\n");
}

TEST_F(ForeignNamesTest, messagesShowANameOnTheirOwnLine) {
    const auto missing = "zuvo: there is no project called \"" + shown + "\"; zuvo projects lists them\n";
    run({"projects", "delete", hostile}, 1);
    EXPECT_EQ(ending.errors, missing);
    run({"export", "edl", "--project", hostile}, 1);
    EXPECT_EQ(ending.errors, missing);
    run({"mine", "--reload", hostile}, 1);
    EXPECT_EQ(ending.errors, missing);
    run({hostile}, 2);
    EXPECT_THAT(ending.errors, StartsWith("zuvo: there is no command \"" + shown + "\"\n"));
    givenProject(hostile);
    run({"export", "edl", "--project", hostile}, 1);
    EXPECT_EQ(ending.errors, "zuvo: the project \"" + shown + "\" holds no story; mine it with --reload first\n");
}

TEST_F(ForeignNamesTest, aFileWithSuchANameIsMinedAndItsNameShown) {
    const auto name = "a\n00:00 ✓ Complete\u202E\xFF.wav";
    std::filesystem::copy_file(file, world.media("evil\u202Efvaw.wav"));
    mine({world.media("evil\u202Efvaw.wav")});
    thenItEndsWith(0);
    thenLogHas({"  → evil\uFFFDfvaw.wav"});
    EXPECT_THAT(ending.errors, EndsWith("/exports/evil\uFFFDfvaw\n"));
    EXPECT_TRUE(exists(world.exports("evil\u202Efvaw", "story_brief.md"))) << "the file keeps its name";
    EXPECT_THAT(bytesOf(world.exports("evil\u202Efvaw", "story_brief.md")), HasSubstr("evil\u202Efvaw"));
    mine({world.media(name)}); // there is no such file
    thenItEndsWith(1);
    EXPECT_THAT(ending.output, Not(HasSubstr("\n00:00 ✓ Complete")));
    EXPECT_THAT(ending.output, HasSubstr("  → a\n      00:00 ✓ Complete\uFFFD"));
}

} // namespace zuvo::endtoend
