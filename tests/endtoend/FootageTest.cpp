// Files as editors have them: odd names, odd sizes, and what is no media at all.

#include "endtoend/MineTest.h"

namespace zuvo::endtoend {
namespace {

using testing::HasSubstr;

const std::vector<std::string> extractionFails = {"Extracting audio from files...", "✗ Audio extraction failed"};

class FootageTest : public MineTest {
protected:
    /// The files were handed on as they are, and the story went to a project of that name.
    void thenMinedAs(const std::string& project, const std::vector<std::string>& files) const {
        thenItEndsWith(0);
        EXPECT_EQ(jsonOf(world.exports(project, "project.json")).at("mediaPaths"), Json(files));
        EXPECT_EQ(jsonOf(world.exports(project, "mining_results.json")).at("segments").size(), 1U);
    }

    /// The run failed in the extraction; nothing was paid for, and no project was made.
    void thenExtractionFailed() const {
        thenItEndsWith(1);
        thenLogEndsWith(extractionFails);
        EXPECT_EQ(world.services.requests().size(), 0U);
        EXPECT_FALSE(exists(world.exports("")));
    }
};

TEST_F(FootageTest, aNameKeepsItsBlanksQuotesAccentsAndJapanese) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("R&D  \"take 1\" – café 東京 $HOME.wav");
    mine({file});
    thenMinedAs("R&D  \"take 1\" – café 東京 $HOME", {file});
    thenLogHas({"  → R&D  \"take 1\" – café 東京 $HOME.wav", "📋 Probing 1 source file..."});
    EXPECT_THAT(bytesOf(world.exports("R&D  \"take 1\" – café 東京 $HOME", "story_brief.md")),
                HasSubstr("# Story Brief — R&D  \"take 1\" – café 東京 $HOME\n"));
}

TEST_F(FootageTest, twoFilesWithBlanksAndQuotesAreJoined) {
    givenTranscript();
    givenStory();
    const auto first = givenFootage("a \"b\" & c.wav");
    const auto second = givenFootage("é 日本.wav");
    mine({first, second});
    thenMinedAs("Dropped Files (2)", {first, second});
}

TEST_F(FootageTest, oneFileWithAnApostropheIsMined) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("Maren's boat.wav");
    mine({file});
    thenMinedAs("Maren's boat", {file});
}

TEST_F(FootageTest, anApostropheAmongTwoFilesBreaksTheList) {
    mine({givenFootage("Maren's boat.wav"), givenFootage("other.wav")});
    thenExtractionFailed();
    thenLogHas({"✓ Probed 2 files"});
}

TEST_F(FootageTest, aNameThatBeginsWithADashIsAFileBehindTwoDashes) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("-take.wav");
    world.workingFolder = world.folder / "media";
    mine({"--", "-take.wav"});
    thenMinedAs("-take", {file});
}

TEST_F(FootageTest, everyOccurrenceOfTheExtensionIsRemovedFromTheName) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("a.wav.wav");
    mine({file});
    thenMinedAs("a", {file});
}

TEST_F(FootageTest, aHiddenFileHasNoExtensionSoItsDotAloneIsRemovedFromTheName) {
    givenTranscript();
    givenStory();
    const auto file = world.media(".wav");
    makeFootage(file, 12.0, {"-f", "wav"});
    mine({file});
    thenMinedAs("wav", {file});
}

TEST_F(FootageTest, aNameWithControlCharactersIsShownWithoutThem) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("bell\a\x1b[31mred.wav");
    mine({file});
    thenMinedAs("bell\a\x1b[31mred", {file});
    thenLogHas({"  → bell\uFFFD\uFFFD[31mred.wav"});
    EXPECT_EQ(ending.output.find('\x1b'), std::string::npos);
    EXPECT_EQ(ending.errors.find('\x1b'), std::string::npos);
}

TEST_F(FootageTest, theSameFileTwiceIsTwoFilesOfOneName) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("talk.wav");
    mine({file, file});
    thenMinedAs("Dropped Files (2)", {file, file});
    thenLogHas({"📋 Probing 2 source files...", "  talk.wav: 0:12, TC: none, 8000Hz",
                "  talk.wav: 0:12, TC: none, 8000Hz", "✓ Probed 1 file"});
    thenLogHas({"📋 Source clip map: talk.wav: 0.0s–12.0s, talk.wav: 12.0s–24.0s"});
}

TEST_F(FootageTest, aPictureWithoutSoundHasNoAudioToExtract) {
    ffmpeg({"-f", "lavfi", "-i", "color=c=black:s=32x32:r=5:d=12", "-c:v", "mpeg4", world.media("silent.mp4")});
    mine({world.media("silent.mp4")});
    thenExtractionFailed();
    thenLogHas({"  silent.mp4: 0:12, TC: none, unknown", "✓ Probed 1 file"});
}

TEST_F(FootageTest, aTextWithTheNameOfASoundIsNone) {
    mine({world.folder.write("media/notes.wav", "Dear diary, this is no sound.\n")});
    thenExtractionFailed();
    thenLogHas({"  notes.wav: 0:00, TC: none, unknown"});
}

TEST_F(FootageTest, anEmptyFileIsNoSound) {
    mine({world.folder.write("media/empty.wav", "")});
    thenExtractionFailed();
}

TEST_F(FootageTest, aFolderIsNoSound) {
    mine({world.folder.makeFolder("media/folder.wav")});
    thenExtractionFailed();
}

TEST_F(FootageTest, aMissingFileIsTheRunsFailureAndNotWrongUsage) {
    mine({world.media("gone.wav")});
    thenExtractionFailed();
    thenLogHas({"Using 1 dropped file...", "  → gone.wav"});
}

TEST_F(FootageTest, aMissingFileBeforeAnotherCostsNothing) {
    mine({world.media("gone.wav"), givenFootage("talk.wav")});
    thenExtractionFailed();
}

TEST_F(FootageTest, aFailedRunLeavesTheEarlierStoryAlone) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("talk.wav");
    mine({file});
    const auto story = bytesOf(world.exports("talk", "mining_results.json"));
    world.folder.write("media/talk.wav", "overwritten by accident");
    mine({file});
    thenItEndsWith(1);
    thenLogEndsWith(extractionFails);
    EXPECT_EQ(bytesOf(world.exports("talk", "mining_results.json")), story);
    EXPECT_FALSE(exists(world.exports("talk", "mining_results_v1.json")));
    EXPECT_TRUE(exists(world.cache("segments.json")));
}

} // namespace
} // namespace zuvo::endtoend
