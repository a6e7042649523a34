#include "fakes/pipeline/PipelineFixture.h"

#include <filesystem>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class Projects : public PipelineFixture {
protected:
    void save(const std::string& name, const TranscriptResult& transcript = {}) {
        pipeline->saveProject(name, transcript, {"/m/A.wav"}, std::nullopt, 5.0);
    }

    std::vector<std::string> names() const {
        std::vector<std::string> list;
        for (const auto& project : pipeline->listProjects())
            list.push_back(project.timeline);
        return list;
    }

    void remove(const std::string& name) {
        SavedProject project;
        project.timeline = name;
        pipeline->deleteProject(project);
    }

    void givenResults(const std::string& folder, const std::string& name, const std::string& text) {
        write(exportsPath(folder + "/" + name), text);
    }

    /// A run whose export folder is that of this name.
    void givenFinishedProjectRun(const std::string& name) {
        SavedProject project;
        project.timeline = name;
        givenStory(fixtureStory);
        ended(pipeline->runFromProject(project, {}));
        ASSERT_EQ(pipeline->lastExportDir(), exportsPath(name));
    }
};

constexpr auto emptyStory = R"({"segments":[],"structure":{"acts":[],"totalDuration":0},"subtitles":[],)"
                            R"("estimatedDuration":12.5})";

} // namespace

TEST_F(Projects, theFileHoldsTheWholeTranscriptAndTheStoryOfTheMoment) {
    now = QDateTime::fromMSecsSinceEpoch(1'772'601'456'000, Qt::UTC);
    pipeline->saveProject("Cut", transcriptOf({{0.0, 1.5, "uno", "en"}}, "es"), {"/m/A.wav"}, "essay", 2.5);
    EXPECT_EQ(read(exportsPath("Cut/project.json")),
              R"({"timeline":"Cut","createdAt":1772601456.0,"language":"es","mediaPaths":["/m/A.wav"],)"
              R"("transcript":[{"start":0.0,"end":1.5,"text":"uno"}],"presetId":"essay","targetMinutes":2.5})");
}

TEST_F(Projects, aLaterSaveOfTheSameNameReplacesTheProject) {
    save("Cut", transcriptOf({{0.0, 1.0, "old", "en"}}));
    save("Cut");
    ASSERT_THAT(pipeline->listProjects(), SizeIs(1));
    EXPECT_THAT(pipeline->listProjects()[0].transcript, IsEmpty());
}

TEST_F(Projects, aLoadedProjectHasItsLanguageInEveryLine) {
    SavedProject project;
    project.language = "es";
    project.transcript = {{0.0, 1.0, "uno"}, {1.0, 2.0, "dos"}};
    const auto transcript = LocalPipeline::loadProject(project);
    EXPECT_EQ(transcript.language, "es");
    ASSERT_THAT(transcript.segments, SizeIs(2));
    EXPECT_EQ(transcript.segments[1].text, "dos");
    EXPECT_EQ(transcript.segments[1].language, "es");
}

TEST_F(Projects, theNewestStandsFirst) {
    for (const auto* name : {"b", "c", "a"}) {
        save(name);
        now = now.addSecs(60);
    }
    EXPECT_THAT(names(), ElementsAre("a", "c", "b"));
}

TEST_F(Projects, aProjectWithoutAStoryIsListedAndABrokenOneIsNot) {
    save("good");
    write(exportsPath("broken/project.json"), "{");
    write(exportsPath("incomplete/project.json"), R"({"timeline": "incomplete"})");
    makeFolder(exportsPath("empty"));
    write(exportsPath("file"), "x");
    EXPECT_THAT(names(), ElementsAre("good"));
}

TEST_F(Projects, withoutAFolderThereAreNone) {
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Projects, aNameWithASlashLiesDeeperAndIsNotListed) {
    save("A/B");
    EXPECT_TRUE(exists(exportsPath("A/B/project.json")));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Projects, aNameThatLeadsOutIsNotWritten) {
    for (const std::string name : {"..", "../x", "A/../../x", "../../../x"})
        save(name);
    EXPECT_FALSE(exists(home + "/Library/Application Support"));
}

TEST_F(Projects, dotsInsideANameAreOrdinary) {
    save("Cut v1..2");
    save("...");
    EXPECT_THAT(names(), testing::UnorderedElementsAre("Cut v1..2", "..."));
}

TEST_F(Projects, aFolderThatCannotBeMadeIsNoFailure) {
    write(home + "/Library/Application Support", "a file where the folder should be");
    save("Cut");
    remove("Cut");
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Projects, deletingRemovesTheFolderWithTheExports) {
    save("Cut");
    write(exportsPath("Cut/subtitles.srt"), "x");
    save("Other");
    remove("Cut");
    EXPECT_FALSE(exists(exportsPath("Cut")));
    EXPECT_THAT(names(), ElementsAre("Other"));
}

TEST_F(Projects, deletingANameWithASlashRemovesTheSubFolderAlone) {
    save("A/B");
    save("A/C");
    remove("A/B");
    EXPECT_FALSE(exists(exportsPath("A/B")));
    EXPECT_TRUE(exists(exportsPath("A/C/project.json")));
}

TEST_F(Projects, deletingNeverTouchesTheProjectsFolderItselfOrWhatLiesOutside) {
    save("Cut");
    write(home + "/Library/Application Support/ZuvoManager/other", "x");
    write(home + "/Library/Application Support/x/file", "x");
    for (const std::string name : {"", ".", "./", "..", "../", "../other", "../../x", "A/..", "A/../..", "Cut/..",
                                   "Cut/../../other", "/", "//", "/.."})
        remove(name);
    remove(std::string("..\0x", 4));
    remove(std::string("../other\0", 9));
    EXPECT_THAT(names(), ElementsAre("Cut"));
    EXPECT_TRUE(exists(home + "/Library/Application Support/ZuvoManager/other"));
    EXPECT_TRUE(exists(home + "/Library/Application Support/x/file"));
}

TEST_F(Projects, deletingDoesNotFollowALinkOutOfTheFolder) {
    save("Cut");
    write(disk / "elsewhere/project.json", "kept");
    write(disk / "elsewhere/sub/file", "kept");
    std::filesystem::create_directory_symlink(disk / "elsewhere", exportsPath("link"));
    for (const std::string name : {"link/sub", "link/project.json", "Cut/../link/sub", "link/", "link/.", "link"}) {
        remove(name);
        EXPECT_TRUE(std::filesystem::is_symlink(exportsPath("link"))) << name;
        EXPECT_TRUE(exists(disk / "elsewhere/project.json")) << name;
        EXPECT_TRUE(exists(disk / "elsewhere/sub/file")) << name;
    }
}

TEST_F(Projects, deletingWorksWhereTheHomeFolderIsReachedByALink) {
    std::filesystem::create_directory_symlink(home, disk / "home-link");
    platform.environment.home = disk / "home-link";
    givenNewLaunch(1);
    save("Cut");
    EXPECT_TRUE(exists(exportsPath("Cut/project.json")));
    remove("Cut");
    EXPECT_FALSE(exists(exportsPath("Cut")));
}

TEST_F(Projects, deletingWhatIsNotThereIsNoFailure) {
    remove("Cut");
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Projects, theNextVersionIsOneAboveTheHighest) {
    const auto folder = exportsPath("Cut");
    EXPECT_EQ(pipeline->nextMineVersion(folder), 1);
    givenResults("Cut", "mining_results_vx.json", "");
    EXPECT_EQ(pipeline->nextMineVersion(folder), 1);
    givenResults("Cut", "mining_results_v1.json", "");
    givenResults("Cut", "mining_results_v7.json", "");
    EXPECT_EQ(pipeline->nextMineVersion(folder), 8);
}

TEST_F(Projects, thereAreNoVersionsBeforeTheFirstRunOfALaunch) {
    givenResults("Cut", "mining_results_v1.json", emptyStory);
    EXPECT_THAT(pipeline->listMineVersions(), IsEmpty());
}

TEST_F(Projects, versionsAreListedInAscendingOrderWithWhatTheyHold) {
    givenFinishedProjectRun("Cut");
    givenResults("Cut", "mining_results_v10.json", emptyStory);
    givenResults("Cut", "mining_results_v2.json", fixtureStory);
    givenResults("Cut", "mining_results_v3.json", "broken");
    givenResults("Cut", "mining_results_vx.json", emptyStory);
    std::filesystem::last_write_time(exportsPath("Cut/mining_results_v2.json"),
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    const auto versions = pipeline->listMineVersions();
    ASSERT_THAT(versions, SizeIs(2));
    EXPECT_EQ(versions[0].version, 2);
    EXPECT_EQ(versions[0].segments, 2);
    EXPECT_EQ(versions[0].duration, 21.0);
    EXPECT_EQ(versions[1].version, 10);
    EXPECT_EQ(versions[1].segments, 0);
    EXPECT_EQ(versions[1].duration, 12.5);
    EXPECT_NEAR(versions[1].date - versions[0].date, 3600.0, 60.0);
}

TEST_F(Projects, aMissingExportFolderHasNoVersions) {
    givenFinishedProjectRun("Cut");
    std::filesystem::remove_all(exportsPath("Cut"));
    EXPECT_THAT(pipeline->listMineVersions(), IsEmpty());
}

TEST_F(Projects, resetForgetsTheFolderAndWithItTheVersions) {
    givenFinishedProjectRun("Cut");
    givenFinishedProjectRun("Cut");
    EXPECT_THAT(pipeline->listMineVersions(), SizeIs(1));
    pipeline->reset();
    EXPECT_THAT(pipeline->listMineVersions(), IsEmpty());
}
