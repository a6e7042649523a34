// Projects that somebody else has made: paths that a tool could take for an address or an option, and names that lead
// out of the folder of the projects.

#include "endtoend/MineTest.h"

#include <QTcpServer>
#include <filesystem>
#include <fstream>

namespace zuvo::endtoend {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class ForeignPathsTest : public TalkTest {
protected:
    ForeignPathsTest() { server.listen(QHostAddress::LocalHost); }

    QTcpServer server; ///< that a tool must not reach

    [[nodiscard]] std::string address() const {
        return "http://127.0.0.1:" + std::to_string(server.serverPort()) + "/talk.wav";
    }

    /// The project of a mine of the footage, with these media in place of its own.
    void givenReceivedProject(const std::vector<std::string>& media) {
        mine({file});
        thenItEndsWith(0);
        auto project = jsonOf(projectFile());
        project["mediaPaths"] = media;
        std::ofstream(projectFile()) << project.dump();
        std::filesystem::remove(world.cache("probe_results.json"));
    }

    [[nodiscard]] std::string projectFile() const { return world.exports("talk", "project.json"); }

    void thenNobodyWasCalled() { EXPECT_FALSE(server.waitForNewConnection(100)) << "a tool went to the address"; }
};

} // namespace

TEST_F(ForeignPathsTest, noToolGoesToAnAddressInAProject) {
    givenReceivedProject({address()});
    mine({"--reload", "talk"});
    thenItEndsWith(0);
    EXPECT_THAT(ending.errors, HasSubstr("zuvo: Media of this project count as missing, since this path is not "
                                         "absolute: \"" +
                                         address() + "\"\n"));
    thenNobodyWasCalled();

    givenReceivedProject({address()});
    for (const auto* format : {"edl", "fcpxml", "premiere"}) {
        ending = world.zuvo({"export", format, "--project", "talk"});
        thenItEndsWith(0);
        EXPECT_THAT(ending.errors, HasSubstr("is not absolute: \"" + address() + "\"\n"));
        EXPECT_THAT(bytesOf(linesOf(ending.output).at(0)), Not(HasSubstr("127.0.0.1")));
    }
    thenNobodyWasCalled();
}

TEST_F(ForeignPathsTest, noToolTakesAPathInAProjectForAnOption) {
    givenReceivedProject({"-version", "footage/talk.wav", file});
    ending = world.zuvo({"export", "fcpxml", "--project", "talk"});
    thenItEndsWith(0);
    EXPECT_THAT(ending.errors, HasSubstr("these paths are not absolute: \"-version\", \"footage/talk.wav\"\n"));
    const auto text = bytesOf(linesOf(ending.output).at(0));
    EXPECT_THAT(text, AllOf(HasSubstr("src=\"file:///path/to/-version\""),
                            HasSubstr("src=\"file:///path/to/talk.wav\""), HasSubstr("src=\"file://" + file + "\"")));
}

TEST_F(ForeignPathsTest, aProjectOfAbsolutePathsIsUsedWithoutAWord) {
    givenReceivedProject({file});
    ending = world.zuvo({"export", "edl", "--project", "talk"});
    thenItEndsWith(0);
    EXPECT_EQ(ending.errors, "");
}

TEST_F(ForeignPathsTest, aFileOfTheCommandLineIsAbsoluteBeforeAToolSeesIt) {
    world.workingFolder = world.media("");
    std::filesystem::copy_file(file, world.media("-version.wav"));
    mine({"--", "-version.wav"});
    thenItEndsWith(0);
    EXPECT_EQ(jsonOf(world.exports("-version", "project.json")).at("mediaPaths"),
              Json::array({world.media("-version.wav")}));
    // An address is the name of a file that does not exist.
    mine({address()});
    thenItEndsWith(1);
    thenLogEndsWith({"✗ Audio extraction failed"});
    thenNobodyWasCalled();
}

TEST_F(ForeignPathsTest, aFileWhoseNameWouldLeadOutIsRefusedBeforeAnythingIsPaidFor) {
    std::filesystem::copy_file(file, world.media("...wav"));
    mine({world.media("...wav")});
    thenItEndsWith(1);
    EXPECT_THAT(ending.errors, StartsWith("zuvo: A mine cannot be called \"..\": "));
    EXPECT_THAT(ending.output, Not(HasSubstr("Complete")));
    EXPECT_TRUE(world.services.requests().empty());
    EXPECT_FALSE(exists(world.home() + "/Library/Application Support"));
}

TEST_F(ForeignPathsTest, aTimelineWhoseNameWouldLeadOutIsRefused) {
    for (const auto& words : {std::vector<std::string>{"mine", "--timeline", "../../.."},
                              {"audit", "--timeline", "../../..", "--mine-first"},
                              {"mine", "--timeline", "../../..", "--json"}}) {
        ending = world.zuvo(words);
        thenItEndsWith(1);
        EXPECT_THAT(ending.errors, StartsWith("zuvo: A mine cannot be called \"../../..\": "));
    }
    const auto last = Json::parse(linesOf(ending.output).back());
    EXPECT_EQ(last.at("event"), "end");
    EXPECT_THAT(last.at("errorMessage").get<std::string>(), StartsWith("A mine cannot be called"));
    EXPECT_FALSE(exists(world.home() + "/Library/Application Support"));
    EXPECT_THAT(namesIn(world.home()), testing::ElementsAre("Library")) << "the lock's cache folder";
}

TEST_F(ForeignPathsTest, aReceivedProjectWhoseNameWouldLeadOutIsRefused) {
    givenReceivedProject({file});
    auto project = jsonOf(projectFile());
    project["timeline"] = "../../..";
    std::ofstream(projectFile()) << project.dump();
    const auto before = filesBelow(world.home());
    const auto asked = world.services.requests().size();
    mine({"--reload", "../../.."});
    thenItEndsWith(1);
    EXPECT_THAT(ending.errors, StartsWith("zuvo: A mine cannot be called \"../../..\": "));
    ending = world.zuvo({"export", "edl", "--project", "../../.."});
    thenItEndsWith(1);
    EXPECT_EQ(ending.errors, "zuvo: the project \"../../..\" lies outside of the projects' folder\n");
    EXPECT_EQ(world.services.requests().size(), asked) << "nothing is paid for";
    EXPECT_EQ(filesBelow(world.home()), before);
}

} // namespace zuvo::endtoend
