// What a second mine finds and leaves: kept versions, and a saved project told anew.

#include "endtoend/MineTest.h"

#include <filesystem>

namespace zuvo::endtoend {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class SecondRunTest : public MineTest {
protected:
    std::string file;

    void SetUp() override {
        file = givenFootage("talk.wav");
        givenTranscript();
        givenStory({{4.5, 11.5, "The first telling."}});
        mine({file, "--minutes", "2.5", "--preset", "campfire"});
        ASSERT_EQ(ending.status, 0) << ending.output << ending.errors;
    }

    [[nodiscard]] std::string storyIn(const std::string& name) const {
        return jsonOf(world.exports("talk", name)).at("segments").at(0).at("transcript");
    }
};

TEST_F(SecondRunTest, theNameIsTheFileWithoutItsExtension) {
    EXPECT_THAT(namesIn(world.exports("")), ElementsAre("talk"));
    EXPECT_EQ(jsonOf(world.exports("talk", "project.json")).at("presetId"), "campfire");
    EXPECT_EQ(jsonOf(world.exports("talk", "project.json")).at("targetMinutes"), 2.5);
    EXPECT_FALSE(exists(world.cache("concat.txt"))) << "one file needs no list";
}

TEST_F(SecondRunTest, laterRunsOfTheSameNameKeepTheEarlierStoriesAsVersions) {
    EXPECT_FALSE(exists(world.exports("talk", "mining_results_v1.json")));
    givenStory({{4.5, 10.5, "The second telling."}});
    mine({file});
    thenItEndsWith(0);
    EXPECT_EQ(storyIn("mining_results.json"), "The second telling.");
    EXPECT_EQ(storyIn("mining_results_v1.json"), "The first telling.");
    givenStory({{4.5, 9.75, "The third telling."}});
    mine({file});
    thenItEndsWith(0);
    EXPECT_THAT(namesIn(world.exports("talk")),
                ElementsAre("mining_results.json", "mining_results_v1.json", "mining_results_v2.json", "project.json",
                            "story_brief.md", "subtitles.srt", "transcript.txt"));
    EXPECT_EQ(storyIn("mining_results.json"), "The third telling.");
    EXPECT_EQ(storyIn("mining_results_v1.json"), "The first telling.");
    EXPECT_EQ(storyIn("mining_results_v2.json"), "The second telling.");
}

TEST_F(SecondRunTest, subtitlesAndBriefAreReplaced) {
    EXPECT_THAT(bytesOf(world.exports("talk", "subtitles.srt")), HasSubstr("first"));
    givenStory({{4.5, 10.5, "The second telling."}});
    mine({file});
    EXPECT_THAT(bytesOf(world.exports("talk", "subtitles.srt")), HasSubstr("second"));
    EXPECT_THAT(bytesOf(world.exports("talk", "subtitles.srt")), Not(HasSubstr("first")));
    EXPECT_THAT(bytesOf(world.exports("talk", "story_brief.md")), Not(HasSubstr("first")));
}

TEST_F(SecondRunTest, theTranscriptIsPaidForAgainAfterARestart) {
    EXPECT_EQ(transcriptionRequests(), 2U);
    mine({file});
    thenLogLacks("cached transcript");
    EXPECT_EQ(transcriptionRequests(), 4U);
    EXPECT_EQ(namesIn(world.cache("transcripts")).size(), 2U) << "the key is another at every start";
}

TEST_F(SecondRunTest, aProjectToldAnewSendsWordRequestsAlone) {
    givenStory({{4.5, 10.5, "Told anew."}});
    mine({"--reload", "talk", "--magic", "--notes", "  Be brief.\n"});
    thenItEndsWith(0);
    ASSERT_EQ(transcriptionRequests(), 3U);
    const auto body = world.services.requests(standin::Service::transcription).back().body;
    EXPECT_THAT(body, HasSubstr("\r\n\r\nword\r\n"));
    EXPECT_THAT(body, HasSubstr("name=\"language\"\r\n\r\nenglish\r\n")) << "the project's language, not \"auto\"";
    EXPECT_THAT(body, HasSubstr("filename=\"word_seg_0.wav\""));
    thenLogHas({"$ zuvo mine --reload talk", "✓ Loaded saved project — 3 segments", "  Skipping transcription (cached)",
                "⛏ Claude analyzing story structure..."});
    thenLogHas({"✓ 3 words across 1 segments", "✓ Exported SRT, transcript, and story brief",
                "  Wrote 1 segments to cache", "Building timeline in Resolve...", "Building timeline in Resolve...",
                "✗ Python returned no output", "  stderr: Traceback (most recent call last):"});
    thenLogEndsWith({"✓ Complete — new style applied!"});
    thenLogLacks("Probing");
}

TEST_F(SecondRunTest, aProjectToldAnewIsANewVersionInANewStyle) {
    givenStory({{4.5, 10.5, "Told anew."}});
    mine({"--reload", "talk", "--magic", "--notes", "  Be brief.\n"});
    EXPECT_EQ(storyIn("mining_results.json"), "Told anew.");
    EXPECT_EQ(storyIn("mining_results_v1.json"), "The first telling.");
    EXPECT_THAT(prompt(0), HasSubstr("\nSTYLE: Base style: Campfire — Meditative, slow burn, poetic\nMeditative, slow\n"
                                     "Balanced structure\nModerate emotion\nExtended, breathing room\n"
                                     "Conservative, safe choices\nLet it breathe, embrace silence\n\n## WHAT"));
    EXPECT_THAT(prompt(1), HasSubstr("\nSTYLE: MAGIC MODE: Listen to the content and decide the best style yourself. "
                                     "Match the tone of the speaker and subject matter. Explain your style choice in "
                                     "the results.\n\nDIRECTOR'S NOTES (highest priority — follow these "
                                     "instructions):\nBe brief.\n\n## WHAT"));
}

TEST_F(SecondRunTest, minutesAndPresetDefaultToTheProjectsOwn) {
    mine({"--reload", "talk"});
    thenItEndsWith(0);
    EXPECT_THAT(prompt(1), HasSubstr("STYLE: Base style: Campfire"));
    EXPECT_THAT(prompt(1), HasSubstr("- Target edit: 2 min (150s)"));
    EXPECT_THAT(prompt(1), HasSubstr("a compelling 2-minute story"));
    EXPECT_EQ(jsonOf(world.exports("talk", "project.json")).at("targetMinutes"), 2.5);
    EXPECT_EQ(jsonOf(world.exports("talk", "project.json")).at("presetId"), "campfire");
}

TEST_F(SecondRunTest, minutesAndPresetCanBeGivenAnew) {
    mine({"--reload", "talk", "--minutes", "7", "--preset", "corporate"});
    thenItEndsWith(0);
    EXPECT_THAT(prompt(1), HasSubstr("STYLE: Base style: Corporate — Tight, message-driven, clear arc\n"));
    EXPECT_THAT(prompt(1), HasSubstr("- Target edit: 7 min (420s)"));
    EXPECT_EQ(jsonOf(world.exports("talk", "project.json")).at("presetId"), "corporate");
}

TEST_F(SecondRunTest, withoutTheExtractedAudioAStoryIsToldWithoutWordTimes) {
    std::filesystem::remove(world.cache("extracted_audio.wav"));
    mine({"--reload", "talk"});
    thenItEndsWith(0);
    EXPECT_EQ(transcriptionRequests(), 2U) << "nothing is transcribed";
    thenLogHas({"⛏ Re-transcribing selected moments at word level...",
                "  No extracted audio for word-level transcription", "✓ Exported SRT, transcript, and story brief"});
    thenLogLacks(" words across ");
}

TEST_F(SecondRunTest, theProjectSurvivesTheLossOfItsMedia) {
    std::filesystem::remove(file);
    mine({"--reload", "talk"});
    // The levels cannot be measured, so every line counts as loud and every moment passes.
    thenItEndsWith(0);
    thenLogHas({"  Extracting audio energy profile...",
                "  Energy: 3 loud, 0 medium, 0 quiet — thresholds: quiet<-60dB<med<-60dB<loud"});
    EXPECT_EQ(storyIn("mining_results.json"), "The first telling.");
}

TEST_F(SecondRunTest, anUnknownProjectIsAFailureWithAMessage) {
    const auto before = messagesRequests();
    mine({"--reload", "Talk"});
    thenItEndsWith(1);
    EXPECT_EQ(ending.errors, "zuvo: there is no project called \"Talk\"; zuvo projects lists them\n");
    EXPECT_EQ(ending.output, "");
    EXPECT_EQ(messagesRequests(), before);
}

TEST_F(SecondRunTest, projectsAreListedNewestFirst) {
    std::filesystem::rename(file, world.media("later.wav"));
    mine({world.media("later.wav")});
    const auto list = world.zuvo({"projects"});
    EXPECT_EQ(list.status, 0);
    const auto lines = linesOf(list.output);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], testing::ContainsRegex("^....-..-.. ..:..  later  \\(1 moment, target 5.0 min\\)$"));
    EXPECT_THAT(lines[1], testing::ContainsRegex("^....-..-.. ..:..  talk  \\(1 moment, target 2.5 min, campfire\\)$"));
}

TEST_F(SecondRunTest, projectsAsJsonAreOneObjectALine) {
    const auto list = world.zuvo({"projects", "--json"});
    const auto lines = linesOf(list.output);
    ASSERT_EQ(lines.size(), 1U);
    const auto object = Json::parse(lines[0]);
    EXPECT_EQ(object.at("timeline"), "talk");
    EXPECT_EQ(object.at("moments"), 1);
    EXPECT_EQ(object.at("presetId"), "campfire");
    EXPECT_EQ(object.at("mediaPaths"), Json::array({file}));
}

TEST_F(SecondRunTest, aDeletedProjectIsGoneWithItsExportsAndNothingElse) {
    const auto removed = world.zuvo({"projects", "delete", "talk"});
    EXPECT_EQ(removed.status, 0) << removed.errors;
    EXPECT_EQ(removed.output, "Removed talk with its exports.\n");
    EXPECT_FALSE(exists(world.exports("talk")));
    EXPECT_TRUE(exists(world.exports("")));
    EXPECT_TRUE(exists(world.cache("segments.json")));
    EXPECT_TRUE(exists(file));
    EXPECT_EQ(world.zuvo({"projects"}).output, "There are no saved projects yet.\n");
    const auto again = world.zuvo({"projects", "delete", "talk"});
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.errors, HasSubstr("there is no project called \"talk\""));
}

TEST_F(SecondRunTest, clearedCachesLeaveWhatWasPaidFor) {
    world.folder.write("home/Desktop/Zuvo_subtitles.srt", "1\n");
    world.folder.write("home/Desktop/mine.txt", "the user's own");
    const auto cleared = world.zuvo({"clear-caches"});
    EXPECT_EQ(cleared.status, 0) << cleared.errors;
    EXPECT_THAT(namesIn(world.cache()), ElementsAre("chunks", "mine.lock", "transcripts"));
    EXPECT_EQ(namesIn(world.cache("transcripts")).size(), 1U);
    EXPECT_THAT(namesIn(world.home() + "/Desktop"), ElementsAre("mine.txt"));
    EXPECT_TRUE(exists(world.exports("talk", "project.json")));
}

} // namespace
} // namespace zuvo::endtoend
