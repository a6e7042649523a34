#include "exporters/PremiereXMLExporter.h"

#include "support/StoryRecords.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using tests::footage;
using tests::moment;
using tests::Streams;

std::string document(const std::vector<StorySegment>& segments, const std::vector<MediaFileInfo>& mediaFiles,
                     double fps = 24.0) {
    return PremiereXMLExporter::exportText("P", segments, mediaFiles, fps);
}

/// What stands between `opening` and `closing`, each time, in order.
std::vector<std::string> contents(const std::string& text, const std::string& opening, const std::string& closing) {
    std::vector<std::string> found;
    for (auto at = text.find(opening); at != std::string::npos; at = text.find(opening, at)) {
        at += opening.size();
        found.push_back(text.substr(at, text.find(closing, at) - at));
    }
    return found;
}

std::string audioOf(const std::string& text) {
    return contents(text, "\n      <audio>\n", "\n      </audio>\n").at(0);
}

std::vector<std::string> clips(const std::string& track) {
    return contents(track, "          <clipitem>\n", "          </clipitem>\n");
}

/// The figures of a clip as "in-out start-end".
std::vector<std::string> places(const std::string& track) {
    std::vector<std::string> found;
    for (const auto& clip : clips(track)) {
        const auto figure = [&clip](const std::string& name) {
            return contents(clip, "            <" + name + ">", "</" + name + ">\n").at(0);
        };
        found.push_back(figure("in") + "-" + figure("out") + " " + figure("start") + "-" + figure("end"));
    }
    return found;
}

struct XmemlRate {
    double fps;
    const char* timebase;
    const char* ntsc;
};

class XMEMLRates : public testing::TestWithParam<XmemlRate> {};

TEST_P(XMEMLRates, areTheSameInSequenceClipAndFile) {
    const auto text = document({moment(0.0, 1.0, "a")}, {footage("a", 9.0, Streams::videoWithSound)}, GetParam().fps);
    for (const std::string indent : {"    ", "            ", "              "})
        EXPECT_THAT(text, HasSubstr("\n" + indent + "<rate>\n" + indent + "  <timebase>" + GetParam().timebase +
                                    "</timebase>\n" + indent + "  <ntsc>" + GetParam().ntsc + "</ntsc>\n" + indent +
                                    "</rate>\n"));
    // The sequence, the file, and a clip in each of two tracks.
    EXPECT_EQ(contents(text, "<rate>", "</rate>").size(), 4U);
}

INSTANTIATE_TEST_SUITE_P(Listed, XMEMLRates,
                         testing::Values(XmemlRate{23.976, "25", "TRUE"}, XmemlRate{24.0, "24", "FALSE"},
                                         XmemlRate{25.0, "25", "FALSE"}, XmemlRate{29.97, "31", "TRUE"},
                                         XmemlRate{30.0, "30", "FALSE"}, XmemlRate{50.0, "50", "FALSE"},
                                         XmemlRate{59.94, "61", "TRUE"}, XmemlRate{60.0, "60", "FALSE"}));
INSTANTIATE_TEST_SUITE_P(Others, XMEMLRates,
                         testing::Values(XmemlRate{23.98, "24", "FALSE"}, XmemlRate{12.5, "13", "FALSE"},
                                         XmemlRate{29.970000000000002, "30", "FALSE"}));

TEST(XMEML, withoutSegmentsTheTrackIsEmpty) {
    EXPECT_EQ(document({}, {}), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<!DOCTYPE xmeml>\n"
                                "<xmeml version=\"5\">\n"
                                "  <sequence>\n"
                                "    <name>P</name>\n"
                                "    <duration>0</duration>\n"
                                "    <rate>\n"
                                "      <timebase>24</timebase>\n"
                                "      <ntsc>FALSE</ntsc>\n"
                                "    </rate>\n"
                                "    <media>\n"
                                "      <audio>\n"
                                "        <numOutputChannels>2</numOutputChannels>\n"
                                "        <track>\n"
                                "        </track>\n"
                                "      </audio>\n"
                                "    </media>\n"
                                "  </sequence>\n"
                                "</xmeml>\n");
}

TEST(XMEML, countsAt24UnlessToldOtherwise) {
    const std::vector<StorySegment> story = {moment(0.3, 1.7, "a")};
    EXPECT_EQ(PremiereXMLExporter::exportText("P", story, {}), PremiereXMLExporter::exportText("P", story, {}, 24.0));
}

TEST(XMEML, clipsAreRoundedEachSoTheLastEndMayDifferFromTheDuration) {
    // 0.7 s are 16.8 frames, so 17; three of them 50.4, so 50.
    const std::vector<StorySegment> story(3, moment(0.0, 0.7, "a"));
    const auto text = document(story, {});
    EXPECT_THAT(text, HasSubstr("    <name>P</name>\n    <duration>50</duration>\n"));
    EXPECT_THAT(places(audioOf(text)), ElementsAre("0-17 0-17", "0-17 17-34", "0-17 34-51"));
}

TEST(XMEML, halvesOfFramesGoAwayFromZero) {
    EXPECT_THAT(places(audioOf(document({moment(0.5, 1.0, "a")}, {}, 25.0))), ElementsAre("13-26 0-13"));
    EXPECT_THAT(places(audioOf(document({moment(-0.5, 0.0, "a")}, {}, 25.0))), ElementsAre("-13-0 0-13"));
}

TEST(XMEML, inIsCountedFromTheFilesFirstSample) {
    const std::vector<MediaFileInfo> files = {footage("b", 10.0, Streams::sound, "02:00:00:00"),
                                              footage("a", 10.0, Streams::sound, "01:00:00:00")};
    const auto text = document({moment(9.0, 11.0, "a"), moment(10.0, 11.0, "a"), moment(30.0, 31.0, "a")}, files);
    EXPECT_THAT(places(audioOf(text)), ElementsAre("216-264 0-48", "0-24 48-72", "480-504 72-96"));
}

TEST(XMEML, aSecondSegmentOfAFileOnlyRefersToIt) {
    const auto text = document({moment(0.0, 1.0, "a"), moment(2.0, 3.0, "a")}, {footage("a", 9.0, Streams::sound)});
    const auto track = clips(audioOf(text));
    ASSERT_EQ(track.size(), 2U);
    EXPECT_THAT(track[0], HasSubstr("            <file id=\"file-1\">\n              <name>a</name>\n"));
    EXPECT_THAT(track[1], HasSubstr("</end>\n            <file id=\"file-1\"/>\n            <sourcetrack>\n"));
    EXPECT_EQ(contents(text, "<pathurl>", "</pathurl>").size(), 1U);
}

TEST(XMEML, filesAreKnownByTheirPath) {
    auto other = footage("a", 9.0, Streams::sound, "01:00:00:00");
    other.path = "/elsewhere/a";
    // Both are called "a", and by name the first is found for both segments.
    const auto text =
        document({moment(0.0, 1.0, "a"), moment(10.0, 11.0, "a")}, {footage("a", 9.0, Streams::sound), other});
    EXPECT_THAT(contents(text, "<file id=\"", "\""), ElementsAre("file-1", "file-1"));
}

TEST(XMEML, withoutMediaIdsAreGivenOutByClipName) {
    const auto text =
        document({moment(3.0, 4.0, "a", "", "One"), moment(5.0, 7.0, "b.mov"), moment(8.0, 9.0, "a")}, {});
    EXPECT_THAT(contents(text, "<file id=\"", "\n"), ElementsAre("file-1\"/>", "file-2\"/>", "file-1\"/>"));
    // A file that nobody knows is as long as the sequence, 4 s.
    EXPECT_THAT(contents(text, "            <duration>", "</duration>"), ElementsAre("96", "96", "96"));
    EXPECT_THAT(places(audioOf(text)), ElementsAre("72-96 0-24", "120-168 24-72", "192-216 72-96"));
    EXPECT_THAT(text, Not(HasSubstr("<video>")));
    EXPECT_THAT(text, Not(HasSubstr("pathurl")));
}

TEST(XMEML, theFirstUseOfAClipWithoutMediaIsOneToo) {
    // Before the first file there is no map entry, and no file is called "x"; later the clip's time leads to a file.
    const auto text = document({moment(-2.0, -1.0, "x"), moment(1.0, 2.0, "x")}, {footage("a", 9.0, Streams::sound)});
    EXPECT_THAT(contents(text, "<file id=\"", "\n"), ElementsAre("file-1\"/>", "file-2\">"));
}

TEST(XMEML, theFileOfTheTimeComesBeforeTheFileOfTheName) {
    const std::vector<MediaFileInfo> files = {footage("a.wav", 10.0, Streams::sound),
                                              footage("b.wav", 20.0, Streams::sound)};
    const auto text = document({moment(12.0, 13.0, "a.wav")}, files);
    EXPECT_THAT(text, HasSubstr("            <name>a.wav</name>\n            <duration>480</duration>\n"));
    EXPECT_THAT(text, HasSubstr("              <name>b.wav</name>\n"));
}

TEST(XMEML, withoutATimeOnTheMapTheClipsNameLeadsToItsMedia) {
    const std::vector<MediaFileInfo> files = {footage("a.wav", 10.0, Streams::sound),
                                              footage("b.wav", 20.0, Streams::sound)};
    const auto text = document({moment(-1.0, 1.0, "b.mov")}, files);
    EXPECT_THAT(text, HasSubstr("              <name>b.wav</name>\n"));
    EXPECT_THAT(places(audioOf(text)), ElementsAre("-24-24 0-48"));
}

TEST(XMEML, anAudioOnlyProjectHasNoVideoAtAll) {
    EXPECT_THAT(document({moment(0.0, 1.0, "a")}, {footage("a", 9.0, Streams::sound)}), Not(HasSubstr("video")));
}

TEST(XMEML, theVideoTrackHoldsTheClipsThatHaveVideoAtTheirPlaces) {
    const std::vector<MediaFileInfo> files = {footage("a", 10.0, Streams::sound),
                                              footage("b", 10.0, Streams::videoWithSound)};
    const auto text =
        document({moment(11.0, 12.0, "b"), moment(1.0, 3.0, "a"), moment(13.0, 14.0, "b", "", "One")}, files);
    const auto video = contents(text, "\n      <video>\n", "\n      </video>\n").at(0);
    EXPECT_THAT(places(video), ElementsAre("24-48 0-24", "72-96 72-96"));
    EXPECT_THAT(contents(video, "<file id=\"", "\n"), ElementsAre("file-1\"/>", "file-1\"/>"));
    EXPECT_THAT(contents(video, "<mediatype>", "<"), ElementsAre("video", "video"));
    EXPECT_THAT(video, Not(HasSubstr("marker")));
}

TEST(XMEML, theAudioTrackHoldsEveryClip) {
    // Also of a file without sound.
    const auto text = document({moment(1.0, 2.0, "a")}, {footage("a", 9.0, Streams::video)});
    EXPECT_THAT(places(audioOf(text)), ElementsAre("24-48 0-24"));
    EXPECT_THAT(audioOf(text), HasSubstr("<mediatype>audio</mediatype>"));
}

TEST(XMEML, theVideoTrackStandsEvenIfNoClipHasVideo) {
    const std::vector<MediaFileInfo> files = {footage("a", 10.0, Streams::sound),
                                              footage("b", 10.0, Streams::videoWithSound)};
    EXPECT_THAT(document({moment(1.0, 2.0, "a")}, files),
                HasSubstr("      </audio>\n      <video>\n        <track>\n        </track>\n      </video>\n"));
}

TEST(XMEML, theVideoTrackDoesNotAskForTheClipsName) {
    // Before the first file there is no file of the time: "a.wav" leads the sound to a.mov by its own name, and the
    // first search, which is all that the picture has, is for the same name.
    const auto byName = document({moment(-1.0, 1.0, "a.wav")}, {footage("a.mov", 9.0, Streams::videoWithSound)});
    EXPECT_EQ(clips(byName).size(), 2U);
    // A time in b, whose name "b" leads to it: the clip's name "a" counts for neither track.
    const std::vector<MediaFileInfo> files = {footage("a", 10.0, Streams::videoWithSound),
                                              footage("b", 10.0, Streams::sound)};
    EXPECT_EQ(clips(document({moment(12.0, 13.0, "a")}, files)).size(), 1U);
}

TEST(XMEML, everySegmentWithAChapterHasItsMarkerInTheAudio) {
    const auto text = document({moment(0.0, 1.0, "a", "", "One & two"), moment(1.0, 2.0, "a", "", "One & two"),
                                moment(2.0, 3.0, "a"), moment(3.0, 4.0, "a", "", "")},
                               {footage("a", 9.0, Streams::videoWithSound)});
    EXPECT_THAT(contents(text, "            <marker>\n              <name>", "</name>\n"),
                ElementsAre("One &amp; two", "One &amp; two", ""));
    EXPECT_THAT(text, HasSubstr("            </sourcetrack>\n"
                                "            <marker>\n"
                                "              <name>One &amp; two</name>\n"
                                "              <in>0</in>\n"
                                "              <out>-1</out>\n"
                                "            </marker>\n"
                                "          </clipitem>\n"));
}

TEST(XMEML, namesAndPathsAreEscapedAndNothingIsPercentEncoded) {
    const auto text = PremiereXMLExporter::exportText("<P>", {moment(0.0, 1.0, "a & 100% #1.wav")},
                                                      {footage("a & 100% #1.wav", 9.0, Streams::sound)});
    EXPECT_THAT(contents(text, "<name>", "</name>"),
                ElementsAre("&lt;P&gt;", "a &amp; 100% #1.wav", "a &amp; 100% #1.wav"));
    EXPECT_THAT(text, HasSubstr("<pathurl>file://localhost/footage/a &amp; 100% #1.wav</pathurl>"));
}

} // namespace
} // namespace zuvo
