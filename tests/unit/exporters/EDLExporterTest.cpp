#include "exporters/EDLExporter.h"

#include "support/StoryRecords.h"

#include <gmock/gmock.h>

#include <sstream>

namespace zuvo {
namespace {

using testing::HasSubstr;
using testing::Not;
using tests::footage;
using tests::moment;
using tests::Streams;

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> found;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        found.push_back(line);
    return found;
}

/// The event line of a list with one event; the head has three lines.
std::string eventLine(const StorySegment& segment, const std::vector<MediaFileInfo>& mediaFiles = {},
                      double fps = 24.0) {
    return lines(EDLExporter::exportText("T", {segment}, mediaFiles, fps)).at(3);
}

/// The reel and track columns: 8 characters, a blank and one more.
std::string reelAndTrack(const std::string& clip, const std::vector<MediaFileInfo>& mediaFiles = {}) {
    return eventLine(moment(0.0, 1.0, clip), mediaFiles).substr(5, 10);
}

TEST(EDL, withoutSegmentsIsItsHeadAndAnEmptyLine) {
    EXPECT_EQ(EDLExporter::exportText("My Story", {}), "TITLE: My Story\nFCM: NON-DROP FRAME\n\n");
}

TEST(EDL, theTitleIsTheProjectNameAsItIs) {
    const std::string name = "A & B: \"über\"\nlong " + std::string(300, 'x');
    EXPECT_EQ(EDLExporter::exportText(name, {}), "TITLE: " + name + "\nFCM: NON-DROP FRAME\n\n");
}

TEST(EDL, countsAt24UnlessToldOtherwise) {
    const std::vector<StorySegment> story = {moment(0.5, 1.75, "a.mov")};
    EXPECT_EQ(EDLExporter::exportText("T", story), EDLExporter::exportText("T", story, {}, 24.0));
}

TEST(EDL, theColumnsOfAnEvent) {
    EXPECT_EQ(
        eventLine(moment(0.0, 2.5, "A001_0101.wav"), {footage("A001_0101.wav", 60.0, Streams::sound, "01:00:00:00")}),
        "001  A001_010 A     C        01:00:00:00 01:00:02:12 00:00:00:00 00:00:02:12");
}

TEST(EDL, withoutMediaSourceTimesAreMineTime) {
    EXPECT_EQ(eventLine(moment(3661.5, 3663.25, "A.wav")),
              "001  A        A     C        01:01:01:12 01:01:03:06 00:00:00:00 00:00:01:18");
}

TEST(EDL, aTimeBeforeTheFirstFileStaysMineTime) {
    EXPECT_THAT(eventLine(moment(-2.0, 3.0, "A.wav"), {footage("A.wav", 60.0, Streams::sound, "01:00:00:00")}),
                HasSubstr(" 00:00:-2:00 00:00:03:00 00:00:00:00 00:00:05:00"));
}

TEST(EDL, sourceTimesLieInTheFileOfTheStartHoweverLongTheSegment) {
    const std::vector<MediaFileInfo> files = {footage("A.wav", 10.0, Streams::sound, "01:00:00:00"),
                                              footage("B.wav", 10.0, Streams::sound, "02:00:00:00")};
    EXPECT_THAT(eventLine(moment(9.0, 14.0, "A.wav"), files), HasSubstr(" 01:00:09:00 01:00:14:00 "));
    EXPECT_THAT(eventLine(moment(10.0, 14.0, "A.wav"), files), HasSubstr(" 02:00:00:00 02:00:04:00 "));
    EXPECT_THAT(eventLine(moment(20.0, 21.0, "A.wav"), files), HasSubstr(" 02:00:10:00 02:00:11:00 "));
}

struct EdlRate {
    double fps;
    const char* times; ///< source in and out, record in and out of 0.99 s that begin at 1.99 s
};

class EDLRates : public testing::TestWithParam<EdlRate> {};

TEST_P(EDLRates, framesAreTruncated) {
    EXPECT_THAT(eventLine(moment(1.99, 2.98, "A.wav"), {}, GetParam().fps), HasSubstr(GetParam().times));
}

// 0.99 and 0.98 of a second: at 24 that is 23.76 and 23.52, at 60 59.4 and 58.8.
INSTANTIATE_TEST_SUITE_P(Listed, EDLRates,
                         testing::Values(EdlRate{23.976, "00:00:01:23 00:00:02:23 00:00:00:00 00:00:00:23"},
                                         EdlRate{24.0, "00:00:01:23 00:00:02:23 00:00:00:00 00:00:00:23"},
                                         EdlRate{25.0, "00:00:01:24 00:00:02:24 00:00:00:00 00:00:00:24"},
                                         EdlRate{29.97, "00:00:01:29 00:00:02:29 00:00:00:00 00:00:00:29"},
                                         EdlRate{30.0, "00:00:01:29 00:00:02:29 00:00:00:00 00:00:00:29"},
                                         EdlRate{50.0, "00:00:01:49 00:00:02:49 00:00:00:00 00:00:00:49"},
                                         EdlRate{59.94, "00:00:01:59 00:00:02:58 00:00:00:00 00:00:00:59"},
                                         EdlRate{60.0, "00:00:01:59 00:00:02:58 00:00:00:00 00:00:00:59"}));
// 47.952: 47.47 and 46.99; 12.5: 12.375 and 12.25.
INSTANTIATE_TEST_SUITE_P(Others, EDLRates,
                         testing::Values(EdlRate{47.952, "00:00:01:47 00:00:02:46 00:00:00:00 00:00:00:47"},
                                         EdlRate{12.5, "00:00:01:12 00:00:02:12 00:00:00:00 00:00:00:12"}));

TEST(EDL, theRecordSideLosesWhatIsLessThanAFrameAtEachEvent) {
    // 0.1 s at 25 are two frames and a half: each event is two frames long.
    const std::vector<StorySegment> story(3, moment(0.0, 0.1, "A.wav"));
    const auto list = lines(EDLExporter::exportText("T", story, {}, 25.0));
    EXPECT_THAT(list.at(3), HasSubstr(" 00:00:00:00 00:00:00:02"));
    EXPECT_THAT(list.at(6), HasSubstr(" 00:00:00:02 00:00:00:04"));
    EXPECT_THAT(list.at(9), HasSubstr(" 00:00:00:04 00:00:00:06"));
}

TEST(EDL, eventsAreNumberedByPlaceNotByIndex) {
    auto first = moment(0.0, 1.0, "A.wav");
    auto second = moment(1.0, 2.0, "A.wav");
    first.index = 40;
    second.index = 7;
    const auto list = lines(EDLExporter::exportText("T", {first, second}));
    EXPECT_THAT(list.at(3), testing::StartsWith("001  A "));
    EXPECT_THAT(list.at(6), testing::StartsWith("002  A "));
}

TEST(EDL, fromTheThousandthEventOnTheColumnsMove) {
    const std::vector<StorySegment> story(1001, moment(0.0, 1.0, "A.wav"));
    const auto list = lines(EDLExporter::exportText("T", story));
    ASSERT_EQ(list.size(), 3U + 3U * 1001U);
    EXPECT_EQ(list.at(3 + 3 * 998), "999  A        A     C        00:00:00:00 00:00:01:00 00:16:38:00 00:16:39:00");
    EXPECT_EQ(list.at(3 + 3 * 999), "1000  A        A     C        00:00:00:00 00:00:01:00 00:16:39:00 00:16:40:00");
    EXPECT_THAT(list.at(3 + 3 * 1000), testing::StartsWith("1001  A        A     C        "));
}

struct Reel {
    const char* clip;
    const char* name;
    const char* column;
};

class Reels : public testing::TestWithParam<Reel> {};

TEST_P(Reels, areCutAndPaddedToEightCharacters) {
    EXPECT_EQ(exporters::reelName(GetParam().clip), GetParam().name);
    EXPECT_THAT(eventLine(moment(0.0, 1.0, GetParam().clip)),
                testing::StartsWith(std::string("001  ") + GetParam().column + " "));
}

INSTANTIATE_TEST_SUITE_P(
    Clips, Reels,
    testing::Values(Reel{"ABCD1234.wav", "ABCD1234", "ABCD1234"}, Reel{"ABCD12345.wav", "ABCD1234", "ABCD1234"},
                    Reel{"ABC.wav", "ABC", "ABC     "}, Reel{"source", "source", "source  "}, Reel{"", "", "        "},
                    Reel{".wav", ".wav", ".wav    "}, Reel{"a.b.mov", "a.b", "a.b     "},
                    Reel{"a b-c_d!.mov", "a b-c_d!", "a b-c_d!"}, Reel{"Zürich.mov", "Zürich", "Zürich  "},
                    Reel{"12345👩‍👩‍👧78.mov", "12345👩‍👩‍👧78", "12345👩‍👩‍👧78"}));

TEST(EDL, aClipCalledSourceIsPaddedAndCountsAsVideo) {
    EXPECT_EQ(reelAndTrack("source"), "source   V");
}

TEST(EDL, withoutMediaTheExtensionTellsTheTrack) {
    for (const char* clip : {"c.wav", "c.aif", "c.aiff", "c.mp3", "c.flac", "c.WAV", "c.Flac"})
        EXPECT_EQ(reelAndTrack(clip), "c        A") << clip;
    for (const char* clip : {"c.mov", "c.mp4", "c.m4a", "c.wave", "c", "c.", "c.wav.mov", "c.aifc"})
        EXPECT_EQ(reelAndTrack(clip).back(), 'V') << clip;
}

TEST(EDL, mediaTellsTheTrack) {
    EXPECT_EQ(reelAndTrack("c.mov", {footage("c.mov", 9.0, Streams::sound)}), "c        A");
    EXPECT_EQ(reelAndTrack("c.wav", {footage("c.wav", 9.0, Streams::video)}), "c        V");
    EXPECT_EQ(reelAndTrack("c.wav", {footage("c.wav", 9.0, Streams::videoWithSound)}), "c        V");
    EXPECT_EQ(reelAndTrack("c.wav", {footage("c.mov", 9.0, Streams::videoWithSound)}), "c        V");
}

TEST(EDL, aClipWhoseNameIsOnlyAPartOfTheMediasIsNotFound) {
    EXPECT_EQ(reelAndTrack("c.wav", {footage("abc.wav", 9.0, Streams::videoWithSound)}), "c        A");
}

TEST(EDL, theFirstFileThatAnswersTellsTheTrack) {
    EXPECT_EQ(reelAndTrack("c.mov", {footage("c.wav", 9.0, Streams::sound), footage("c.mov", 9.0, Streams::video)}),
              "c        A");
}

TEST(EDL, anEventIsFollowedByItsRemarksAndAnEmptyLine) {
    const auto list = lines(EDLExporter::exportText("T", {moment(0.0, 1.0, "A & B.wav", "Hello.", "One")}));
    ASSERT_EQ(list.size(), 8U);
    EXPECT_EQ(list[4], "* FROM CLIP NAME: A & B.wav");
    EXPECT_EQ(list[5], "* COMMENT: Hello.");
    EXPECT_EQ(list[6], "* CHAPTER: One");
    EXPECT_EQ(list[7], "");
}

TEST(EDL, anEmptyTranscriptHasNoComment) {
    EXPECT_THAT(EDLExporter::exportText("T", {moment(0.0, 1.0, "A.wav")}), Not(HasSubstr("COMMENT")));
}

TEST(EDL, aCommentIsTheFirst60Characters) {
    const auto comment = [](const std::string& transcript) {
        return lines(EDLExporter::exportText("T", {moment(0.0, 1.0, "A.wav", transcript)})).at(5);
    };
    EXPECT_EQ(comment(std::string(60, 'x')), "* COMMENT: " + std::string(60, 'x'));
    EXPECT_EQ(comment(std::string(61, 'x')), "* COMMENT: " + std::string(60, 'x'));
    EXPECT_EQ(comment(std::string(59, 'x') + "👩‍👩‍👧y"),
              "* COMMENT: " + std::string(59, 'x') + "👩‍👩‍👧");
    EXPECT_EQ(comment(" "), "* COMMENT:  ");
}

TEST(EDL, lineEndsOfATranscriptStay) {
    EXPECT_THAT(EDLExporter::exportText("T", {moment(0.0, 1.0, "A.wav", "One.\nTwo.\r\nThree.")}),
                HasSubstr("* COMMENT: One.\nTwo.\r\nThree.\n"));
}

TEST(EDL, anEmptyChapterHasItsLineAndNoneHasNone) {
    EXPECT_THAT(EDLExporter::exportText("T", {moment(0.0, 1.0, "A.wav", "", "")}), HasSubstr("\n* CHAPTER: \n\n"));
    EXPECT_THAT(EDLExporter::exportText("T", {moment(0.0, 1.0, "A.wav")}), Not(HasSubstr("CHAPTER")));
}

} // namespace
} // namespace zuvo
