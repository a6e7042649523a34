#include "pipeline/ResultsCheck.h"

#include "fakes/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>

namespace zuvo {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const FileStamp earlier{7, 100.0};
const FileStamp later{8, 200.0};

PromisedFile promise(std::string path, std::string text, std::optional<FileStamp> before = earlier) {
    return {std::move(path), std::move(text), before, false};
}

std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

constexpr const char* card = "1\n00:00:01,000 --> 00:00:02,500\nHere I am.\n\n";

TEST(ResultsShortfall, aFileThatWasReplacedByWhatIsInMemoryIsThere) {
    EXPECT_EQ(shortfallOf(promise("/a.md", "new"), {later, "new"}), Shortfall::none);
    EXPECT_EQ(shortfallOf(promise("/a.json", "[1]", std::nullopt), {later, "[1]"}), Shortfall::none);
    EXPECT_EQ(shortfallOf(promise("/a.md", ""), {later, ""}), Shortfall::none) << "an empty text is one";
}

TEST(ResultsShortfall, eachThingThatCanBeLackingHasItsName) {
    EXPECT_EQ(shortfallOf(promise("/a.md", "new"), {std::nullopt, std::nullopt}), Shortfall::missing);
    EXPECT_EQ(shortfallOf(promise("/a.md", "new"), {earlier, "old"}), Shortfall::old);
    EXPECT_EQ(shortfallOf(promise("/a.md", "new"), {later, "ne"}), Shortfall::differs);
    EXPECT_EQ(shortfallOf(promise("/a.md", "new"), {later, std::nullopt}), Shortfall::differs) << "unreadable";
    EXPECT_EQ(shortfallOf(promise("/a.json", "[1"), {later, "[1"}), Shortfall::noJson);
    EXPECT_EQ(shortfallOf({"/a.json", std::nullopt, earlier, false}, {later, "[1]"}), Shortfall::unwritable);
}

TEST(ResultsShortfall, anOldFileThatHappensToHoldTheSameIsStillOld) {
    EXPECT_EQ(shortfallOf(promise("/a.md", "same"), {earlier, "same"}), Shortfall::old);
}

TEST(ResultsShortfall, theSubtitlesOfABuildTakeThePlaceOfTheMinesIfTheyAreWhole) {
    auto promised = promise("/subtitles.srt", card);
    const std::string other = std::string(card) + "2\n00:00:03,000 --> 00:00:04,000\n \n";
    EXPECT_EQ(shortfallOf(promised, {later, other}), Shortfall::differs) << "there was no build";
    promised.mayHoldOtherSubtitles = true;
    EXPECT_EQ(shortfallOf(promised, {later, other}), Shortfall::none);
    EXPECT_EQ(shortfallOf(promised, {later, card}), Shortfall::none);
    EXPECT_EQ(shortfallOf(promised, {earlier, other}), Shortfall::old);
    EXPECT_EQ(shortfallOf(promised, {later, ""}), Shortfall::differs) << "a build of no moment empties them";
}

TEST(WholeSrt, endsWithACardThatHasText) {
    EXPECT_TRUE(isWholeSrt(card));
    EXPECT_TRUE(isWholeSrt("1\n00:00:01,000 --> 00:00:02,500\n \n")) << "silence is one blank";
    for (const char* text : {"", "1\n", "1\n00:00:01,000", "1\n00:00:01,000 --> 00:00:0", "x --> y\nz\n",
                             "1\n00:00:01,000 --> 00:00:02,500", "1\n00:00:01,000 --> 00:00:02,500\n"})
        EXPECT_FALSE(isWholeSrt(text)) << text;
}

class ResultsCheck : public testing::Test {
protected:
    tests::TemporaryFolder disk;

    /// A file that a run has written, as the pipeline keeps it.
    PromisedFile saved(const std::string& name, const std::string& text) const {
        return {disk.write(name, text), text, std::nullopt, false};
    }
    /// A file that a run could not write.
    [[nodiscard]] PromisedFile lost(const std::string& name, const std::string& text) const {
        return {disk / name, text, fileStamp(disk / name), false};
    }
};

TEST_F(ResultsCheck, whatIsThereIsNotReported) {
    EXPECT_THAT(unsavedFiles({saved("a.md", "a"), saved("b.json", "{}")}), IsEmpty());
    EXPECT_THAT(unsavedFiles({}), IsEmpty());
}

TEST_F(ResultsCheck, aFileThatCanBeWrittenByNowIsSaved) {
    disk.write("old.md", "old");
    const auto old = lost("old.md", "new");
    EXPECT_THAT(unsavedFiles({old, lost("deep/down/b.md", "b")}), IsEmpty());
    EXPECT_EQ(bytesOf(old.path), "new");
    EXPECT_EQ(bytesOf(disk / "deep/down/b.md"), "b");
}

TEST_F(ResultsCheck, aFileThatCannotBeWrittenIsReportedWithThePlatformsReason) {
    disk.write("in the way", "");
    disk.makeFolder("a.md/not empty");
    const auto unsaved = unsavedFiles({lost("in the way/x.md", "x"), saved("b.md", "b"), lost("a.md", "a")});
    ASSERT_THAT(unsaved, SizeIs(2));
    EXPECT_EQ(unsaved[0].path, disk / "in the way/x.md");
    EXPECT_EQ(unsaved[0].reason, "there is no such file (Not a directory)");
    EXPECT_EQ(unsaved[1].path, disk / "a.md");
    EXPECT_EQ(unsaved[1].reason, "there is no such file (Is a directory)");
    EXPECT_EQ(unsavedMessage({"/a\n.md", "why"}), "/a\uFFFD.md was not saved: why");
}

TEST_F(ResultsCheck, aStoryThatJsonCannotHoldIsReportedAndTheOldFileStays) {
    disk.write("mining_results.json", "{}");
    const auto unsaved = unsavedFiles({{disk / "mining_results.json", std::nullopt, std::nullopt, false}});
    ASSERT_THAT(unsaved, SizeIs(1));
    EXPECT_EQ(unsaved[0].reason, "it holds a number that JSON cannot hold");
    EXPECT_EQ(bytesOf(disk / "mining_results.json"), "{}");
}

TEST_F(ResultsCheck, aCopyGoesIntoTheChosenFolderAndReplacesNothing) {
    const std::vector<PromisedFile> promised = {lost("no/story_brief.md", "brief"), lost("no/subtitles.srt", card),
                                                lost("no/transcript.txt", "all"), lost("no/mining_results.json", "{}"),
                                                lost("no/project.json", "{\"a\":1}")};
    const auto first = saveCopies(promised, disk.makeFolder("copy"));
    EXPECT_EQ(first.failure, "");
    EXPECT_EQ(first.folder, disk / "copy");
    EXPECT_EQ(bytesOf(disk / "copy/story_brief.md"), "brief");
    EXPECT_EQ(bytesOf(disk / "copy/subtitles.srt"), card);
    EXPECT_EQ(bytesOf(disk / "copy/transcript.txt"), "all");
    EXPECT_EQ(bytesOf(disk / "copy/mining_results.json"), "{}");
    EXPECT_FALSE(std::filesystem::exists(disk / "copy/project.json"));

    EXPECT_EQ(saveCopies({lost("no/story_brief.md", "second")}, disk / "copy").folder, disk / "copy/Zuvo copy");
    EXPECT_EQ(saveCopies({lost("no/story_brief.md", "third")}, disk / "copy").folder, disk / "copy/Zuvo copy 2");
    EXPECT_EQ(bytesOf(disk / "copy/story_brief.md"), "brief");
    EXPECT_EQ(bytesOf(disk / "copy/Zuvo copy/story_brief.md"), "second");
    EXPECT_EQ(bytesOf(disk / "copy/Zuvo copy 2/story_brief.md"), "third");
}

TEST_F(ResultsCheck, aCopyThatCannotBeWrittenSaysWhy) {
    disk.write("a file", "");
    const auto outcome = saveCopies({lost("no/story_brief.md", "brief")}, disk / "a file");
    EXPECT_EQ(outcome.failure, (disk / "a file/story_brief.md") + " could not be written: Not a directory");
}

TEST(MineName, mayHoldDotsThatStayWithin) {
    for (const std::string name : {"talk", "...", "a..b", "A/B", "a/../b"})
        EXPECT_EQ(mineNameRefusal("/projects", name), "") << name;
}

TEST(MineName, thatLeadsOutIsRefusedWithAReason) {
    for (const std::string name : {"..", "../../..", "a/../..", "../x"})
        EXPECT_THAT(mineNameRefusal("/projects", name), HasSubstr("A mine cannot be called \"" + name + "\": "));
    EXPECT_THAT(mineNameRefusal("/projects", "../\u202Ex"), HasSubstr("\"../\uFFFDx\""));
}

} // namespace
} // namespace zuvo
