// Files of ours that were cut off, and things that stand where our files and folders should be.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"
#include "endtoend/ResolveWorlds.h"
#include "endtoend/StoredStories.h"

#include <filesystem>
#include <fstream>

namespace zuvo::endtoend {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr std::size_t tenths = 10;

class DamagedFilesTest : public TalkTest {
protected:
    void givenAnEarlierMine() {
        mine({file});
        thenItEndsWith(0);
    }

    static void write(const std::string& path, const std::string& bytes) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << bytes;
    }

    /// Calls `look` with the file cut at each tenth of its length (or every `step`-th of them), from nothing on, and
    /// mends it.
    template <class Look>
    static void cutAtEachTenth(const std::string& path, const Look& look, std::size_t step = 1) {
        const auto whole = bytesOf(path);
        ASSERT_GE(whole.size(), tenths);
        for (std::size_t tenth = 0; tenth < tenths; tenth += step) {
            SCOPED_TRACE(path + " cut at " + std::to_string(tenth) + "/10");
            const auto part = whole.substr(0, whole.size() * tenth / tenths);
            write(path, part);
            look(part);
        }
        write(path, whole);
    }

    /// The world with a file in a place of its home folder; the mine then runs.
    void mineWithAFileAt(const std::string& place) {
        write(place, "in the way");
        mine({file});
        EXPECT_EQ(bytesOf(place), "in the way");
    }
    void mineWithAFolderAt(const std::string& place) {
        std::filesystem::create_directories(place + "/not empty");
        mine({file});
        EXPECT_TRUE(exists(place + "/not empty")) << "what is not ours is not removed";
    }
};

TEST_F(DamagedFilesTest, aProjectCutOffIsNotListedAndNotTouched) {
    givenAnEarlierMine();
    const auto path = world.exports("talk", "project.json");
    cutAtEachTenth(path, [&](const std::string& part) {
        const auto list = world.zuvo({"projects"});
        EXPECT_EQ(list.status, 0) << list.errors;
        EXPECT_EQ(list.output, "There are no saved projects yet.\n");
        EXPECT_EQ(bytesOf(path), part);
    });
    EXPECT_THAT(world.zuvo({"projects"}).output, HasSubstr("  talk  "));
    write(path, "{\"timeline\": \"talk\"");
    mine({"--reload", "talk"});
    thenItEndsWith(1);
    EXPECT_EQ(ending.errors, "zuvo: there is no project called \"talk\"; zuvo projects lists them\n");
    EXPECT_EQ(world.zuvo({"export", "edl", "--project", "talk"}).status, 1);
}

TEST_F(DamagedFilesTest, aMineOverAProjectCutOffMakesItWholeAgain) {
    givenAnEarlierMine();
    const auto path = world.exports("talk", "project.json");
    const auto whole = bytesOf(path);
    write(path, whole.substr(0, whole.size() / 2));
    givenAnEarlierMine();
    EXPECT_EQ(jsonOf(path).at("transcript").size(), 3U);
}

TEST_F(DamagedFilesTest, aHandOffCutOffBuildsNothing) {
    world.givenResolve(resolveWith("Talk", {clipOf(file, "00:00:12:00")}));
    givenAnEarlierMine();
    cutAtEachTenth(world.cache("segments.json"), [&](const std::string&) {
        const auto build = world.zuvo({"build"});
        EXPECT_EQ(build.status, 1) << build.output;
        EXPECT_THAT(timelinesNamed(world.resolve(), "Zuvo Build"), SizeIs(0));
    });
    EXPECT_EQ(world.zuvo({"build"}).status, 0);
}

TEST_F(DamagedFilesTest, wordTimesCutOffAreDoneWithoutInABuild) {
    world.givenResolve(resolveWith("Talk", {clipOf(file, "00:00:12:00")}));
    givenAnEarlierMine();
    cutAtEachTenth(world.cache("word_timestamps.json"), [&](const std::string&) {
        world.givenResolve(resolveWith("Talk", {clipOf(file, "00:00:12:00")}));
        const auto build = world.zuvo({"build"});
        EXPECT_EQ(build.status, 0) << build.output;
        EXPECT_THAT(build.output, HasSubstr("1/1 clips appended"));
    });
}

TEST_F(DamagedFilesTest, probeDataCutOffEndTheBuildBeforeItTouchesResolve) {
    world.givenResolve(resolveWith("Talk", {clipOf(file, "00:00:12:00")}));
    givenAnEarlierMine();
    cutAtEachTenth(world.cache("probe_results.json"), [&](const std::string&) {
        const auto build = world.zuvo({"build", "--json"});
        EXPECT_EQ(build.status, 1) << build.output;
        EXPECT_EQ(Json::parse(linesOf(build.output).back()).at("buildResult"), "✗ No response from Resolve");
        EXPECT_THAT(timelinesNamed(world.resolve(), "Zuvo Build"), SizeIs(0));
    });
    EXPECT_EQ(world.zuvo({"build"}).status, 0);
}

TEST_F(DamagedFilesTest, aProjectIsToldAnewWhateverPartOfTheProbeDataIsLeft) {
    givenAnEarlierMine();
    InProcess inProcess(world);
    cutAtEachTenth(
        world.cache("probe_results.json"),
        [&](const std::string& part) {
            const auto pipeline = LocalPipeline::create(inProcess.platform, inProcess.timeouts);
            const auto projects = pipeline->listProjects();
            ASSERT_EQ(projects.size(), 1U);
            tests::runToEnd(pipeline->runFromProject(projects[0], StoryChoices()), std::chrono::seconds(60));
            EXPECT_EQ(pipeline->step(), PipelineStep::complete);
            ASSERT_TRUE(pipeline->results().has_value());
            EXPECT_EQ(pipeline->results()->segments.size(), 1U);
            EXPECT_EQ(bytesOf(world.cache("probe_results.json")), part) << "a project told anew does not probe";
        },
        3);
}

TEST_F(DamagedFilesTest, aCachedTranscriptCutOffIsNoTranscript) {
    InProcess inProcess(world);
    inProcess.mine({file});
    const auto path = inProcess.pipeline->cacheDir({file}) + "/transcript.json";
    cutAtEachTenth(
        path, [&](const std::string&) { EXPECT_FALSE(inProcess.pipeline->loadCachedTranscript({file}).has_value()); });
    EXPECT_TRUE(inProcess.pipeline->loadCachedTranscript({file}).has_value());
}

TEST_F(DamagedFilesTest, aVersionCutOffIsNotListedAndItsNumberIsNotGivenAgain) {
    InProcess inProcess(world);
    inProcess.mine({file});
    inProcess.mine({file});
    const auto path = world.exports("talk", "mining_results_v1.json");
    cutAtEachTenth(path, [&](const std::string&) {
        EXPECT_TRUE(inProcess.pipeline->listMineVersions().empty());
        EXPECT_EQ(inProcess.pipeline->nextMineVersion(world.exports("talk")), 2);
    });
    EXPECT_EQ(inProcess.pipeline->listMineVersions().size(), 1U);
}

TEST_F(DamagedFilesTest, aFileInThePlaceOfAnyFolderAboveTheCacheFailsTheExtraction) {
    for (const std::string folder : {"/Library", "/Library/Caches", "/Library/Caches/ZuvoManager"}) {
        SCOPED_TRACE(folder);
        mineWithAFileAt(world.home() + folder);
        thenItEndsWith(1);
        thenLogEndsWith({"Extracting audio from files...", "✗ Audio extraction failed"});
        EXPECT_TRUE(world.services.requests().empty());
        std::filesystem::remove_all(world.home() + "/Library");
    }
}

TEST_F(DamagedFilesTest, aFileInThePlaceOfAnyFolderOfTheStoresLosesThatStoreAlone) {
    const auto support = world.home() + "/Library/Application Support";
    // The first two hold nothing that a mine promises; the others hold the results, which are then not saved.
    const std::vector<std::pair<std::string, int>> folders = {
        {world.cache("transcripts"), 0},       {world.cache("chunks"), 0}, {support, 1}, {support + "/ZuvoManager", 1},
        {support + "/ZuvoManager/exports", 1}, {world.exports("talk"), 1}};
    for (const auto& [folder, status] : folders) {
        SCOPED_TRACE(folder);
        write(folder, "in the way");
        mine({file});
        thenItEndsWith(status);
        thenLogHas({"✓ Complete — we found gems!"});
        EXPECT_EQ(jsonOf(world.cache("segments.json")).size(), 1U);
        // The folder of chunks is the program's own, and made anew by each mine.
        if (folder != world.cache("chunks")) {
            EXPECT_EQ(bytesOf(folder), "in the way");
        }
        std::filesystem::remove_all(world.home() + "/Library");
    }
}

TEST_F(DamagedFilesTest, aFolderInThePlaceOfAnyFileOfTheCacheIsLeftThere) {
    for (const std::string name : {"probe_results.json", "word_timestamps.json", "word_seg_0.wav", "segments.json"}) {
        SCOPED_TRACE(name);
        mineWithAFolderAt(world.cache(name));
        // A later build would use what such a file held before. A cut-out moment is of no use afterwards.
        thenItEndsWith(name == "word_seg_0.wav" ? 0 : 1);
        thenLogHas({"✓ Complete — we found gems!"});
        EXPECT_EQ(jsonOf(world.exports("talk", "mining_results.json")).at("segments").size(), 1U);
        std::filesystem::remove_all(world.home() + "/Library");
    }
}

TEST_F(DamagedFilesTest, aFolderInThePlaceOfTheExtractedAudioFailsTheExtraction) {
    mineWithAFolderAt(world.cache("extracted_audio.wav"));
    thenItEndsWith(1);
    thenLogEndsWith({"✗ Audio extraction failed"});
    EXPECT_TRUE(world.services.requests().empty());
}

TEST_F(DamagedFilesTest, aFolderInThePlaceOfTheListOfSeveralFilesFailsTheExtraction) {
    std::filesystem::create_directories(world.cache("concat.txt"));
    mine({file, givenFootage("second.wav")});
    thenItEndsWith(1);
    thenLogEndsWith({"✗ Audio extraction failed"});
    EXPECT_TRUE(world.services.requests().empty());
}

TEST_F(DamagedFilesTest, aFolderInThePlaceOfAnyExportLosesThatFileAlone) {
    const std::vector<std::string> names = {"subtitles.srt", "transcript.txt", "story_brief.md", "mining_results.json",
                                            "project.json"};
    for (const auto& name : names) {
        SCOPED_TRACE(name);
        mineWithAFolderAt(world.exports("talk", name));
        thenItEndsWith(1);
        EXPECT_THAT(ending.errors, HasSubstr(world.exports("talk", name) + " was not saved: "));
        for (const auto& other : names)
            EXPECT_EQ(std::filesystem::is_regular_file(world.exports("talk", other)), other != name) << other;
        for (const auto& [path, bytes] : filesBelow(world.home()))
            EXPECT_FALSE(isLeftover(path)) << path;
        std::filesystem::remove_all(world.home() + "/Library");
    }
}

TEST_F(DamagedFilesTest, aFolderInThePlaceOfAVersionKeepsItsNumber) {
    std::filesystem::create_directories(world.exports("talk", "mining_results_v1.json"));
    givenAnEarlierMine();
    givenStory({{4.5, 10.5, "The second telling."}});
    mine({file});
    thenItEndsWith(0);
    EXPECT_TRUE(exists(world.exports("talk", "mining_results_v2.json")));
    EXPECT_THAT(jsonOf(world.exports("talk", "mining_results_v2.json")).at("segments").at(0).at("transcript"),
                "Here I am, close and clear.");
}

TEST_F(DamagedFilesTest, foldersInThePlaceOfTheTracesOfABuildDoNotMatter) {
    world.givenResolve(resolveWith("Talk", {clipOf(file, "00:00:12:00")}));
    givenAnEarlierMine();
    std::filesystem::create_directories(world.cache("build_debug.txt"));
    std::filesystem::create_directories(world.cache("build_output.txt"));
    EXPECT_EQ(world.zuvo({"build"}).status, 0);
}

TEST_F(DamagedFilesTest, aHomeInWhichNobodyCanWriteFailsInWords) {
    // Not even root makes a folder there.
    world.set("HOME", "/proc");
    mine({file});
    thenItEndsWith(1);
    thenLogEndsWith({"Extracting audio from files...", "✗ Audio extraction failed"});
    EXPECT_TRUE(world.services.requests().empty());
    EXPECT_EQ(world.zuvo({"projects"}).output, "There are no saved projects yet.\n");
    EXPECT_EQ(world.zuvo({"clear-caches"}).status, 0);
    EXPECT_EQ(world.zuvo({"build"}).status, 1);
}

TEST_F(DamagedFilesTest, aTemporaryFolderInWhichNobodyCanWriteIsNamed) {
    world.set("TMPDIR", "/proc");
    mine({file});
    thenItEndsWith(1);
    EXPECT_EQ(ending.errors,
              "zuvo: The folder for temporary files in /proc cannot be made or is not this user's own\n");
    EXPECT_TRUE(world.services.requests().empty());
}

TEST_F(DamagedFilesTest, aFileOfTheLongestNameIsMinedLikeAnyOther) {
    constexpr std::size_t longest = 255; // bytes
    const std::string extension = ".wav";
    for (const auto& [name, project] : {std::pair{std::string(longest - extension.size(), 'a') + extension,
                                                  std::string(longest - extension.size(), 'a')},
                                        std::pair{std::string(longest, 'b'), std::string(longest, 'b')}}) {
        std::filesystem::copy_file(file, world.media(name));
        mine({world.media(name)});
        thenItEndsWith(0);
        EXPECT_THAT(namesIn(world.exports(project)), ElementsAre("mining_results.json", "project.json",
                                                                 "story_brief.md", "subtitles.srt", "transcript.txt"));
        const auto exported = world.zuvo({"export", "edl", "--project", project});
        EXPECT_EQ(exported.status, 0) << exported.errors;
    }
}

} // namespace
} // namespace zuvo::endtoend
