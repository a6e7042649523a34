// Numbers and names that no story should have: every document comes to its end and is bounded.

#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/PremiereXMLExporter.h"

#include "support/SpecialNumbers.h"
#include "support/StoryRecords.h"

#include <gmock/gmock.h>

#include <limits>

namespace zuvo {
namespace {

using testing::HasSubstr;
using tests::footage;
using tests::moment;
using tests::Streams;

const std::vector<double> oddNumbers = {0.0,   -0.0,   1.0,    -5.0,    0.009,    -0.01,     1e-308,
                                        1e308, -1e308, 9.3e18, -9.3e18, infinity, -infinity, notANumber};

/// How often `what` stands in the text.
std::size_t count(const std::string& text, const std::string& what) {
    std::size_t found = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size()))
        ++found;
    return found;
}

void expectWholeDocuments(const std::vector<StorySegment>& story, const std::vector<MediaFileInfo>& files, double fps,
                          const std::vector<Subtitle>& subtitles) {
    // No number is longer than a 64-bit one, so no segment, file or caption takes more than this.
    constexpr std::size_t longest = 8192;
    const auto bound = longest * (1 + story.size() + files.size() + subtitles.size());
    const auto edl = EDLExporter::exportText("P", story, files, fps);
    EXPECT_EQ(count(edl, "* FROM CLIP NAME: "), story.size());
    EXPECT_LT(edl.size(), bound);
    const auto fcpxml = FCPXMLExporter::exportText("P", story, files, fps, subtitles);
    EXPECT_EQ(count(fcpxml, "<asset-clip "), files.empty() ? 0 : story.size());
    EXPECT_EQ(count(fcpxml, "<chapter-marker "), story.size());
    EXPECT_TRUE(fcpxml.ends_with("\n</fcpxml>\n"));
    EXPECT_LT(fcpxml.size(), bound);
    const auto xmeml = PremiereXMLExporter::exportText("P", story, files, fps);
    EXPECT_GE(count(xmeml, "<clipitem>"), story.size());
    EXPECT_TRUE(xmeml.ends_with("</xmeml>\n"));
    EXPECT_LT(xmeml.size(), bound);
}

TEST(OddNumbers, asSegmentTimesGiveWholeDocuments) {
    const std::vector<MediaFileInfo> files = {footage("a", 10.0, Streams::videoWithSound, "01:00:00:00"),
                                              footage("b", 10.0, Streams::sound)};
    for (const double start : oddNumbers) {
        for (const double end : oddNumbers) {
            const std::vector<StorySegment> story = {moment(0.0, 1.0, "a"), moment(start, end, "a", "x", "y"),
                                                     moment(1.0, 2.0, "b")};
            const std::vector<Subtitle> subtitles = {{start, end, "z"}};
            expectWholeDocuments(story, files, 24.0, subtitles);
            expectWholeDocuments(story, {}, 23.976, subtitles);
        }
    }
}

TEST(OddNumbers, asRatesGiveWholeDocuments) {
    const std::vector<StorySegment> story = {moment(0.25, 1.5, "a"), moment(-1.0, 2.0, "b"), moment(9.0, 8.0, "c"),
                                             moment(notANumber, 1e308, "a")};
    const std::vector<MediaFileInfo> files = {footage("a", 10.0, Streams::videoWithSound, "01:00:00:12"),
                                              footage("b", 10.0, Streams::sound)};
    for (const double fps : oddNumbers) {
        expectWholeDocuments(story, files, fps, {{0.1, 1.7, "z"}});
        expectWholeDocuments(story, {}, fps, {});
    }
}

TEST(OddNumbers, asDurationsOfFilesGiveWholeDocuments) {
    const std::vector<StorySegment> story = {moment(0.25, 1.5, "a"), moment(15.0, 16.0, "b"),
                                             moment(1e300, 1e301, "c")};
    for (const double first : oddNumbers) {
        for (const double second : oddNumbers)
            expectWholeDocuments(story,
                                 {footage("a", first, Streams::video, "-99999999999:00:00:00"),
                                  footage("b", second, Streams::sound, "9223372036854775807:9223372036854775807:1:1")},
                                 25.0, {});
    }
}

TEST(OddNumbers, aReversedSegmentTakesTimeBack) {
    const std::vector<StorySegment> story = {moment(0.0, 10.0, "a.wav"), moment(5.0, 2.0, "a.wav"),
                                             moment(0.0, 1.0, "a.wav")};
    const auto edl = EDLExporter::exportText("P", story);
    EXPECT_THAT(edl, HasSubstr(" 00:00:05:00 00:00:02:00 00:00:10:00 00:00:07:00\n"));
    EXPECT_THAT(edl, HasSubstr(" 00:00:00:00 00:00:01:00 00:00:07:00 00:00:08:00\n"));
    EXPECT_THAT(PremiereXMLExporter::exportText("P", story, {}),
                HasSubstr("<in>120</in>\n            <out>48</out>\n"
                          "            <start>240</start>\n            <end>168</end>\n"));
    EXPECT_THAT(FCPXMLExporter::exportText("P", story, {footage("a.wav", 60.0, Streams::sound)}, 24.0, std::nullopt),
                HasSubstr(" offset=\"10s\" name=\"\" start=\"5s\" duration=\"-3s\" "));
}

TEST(OddNumbers, framesStandAtTheEndOfTheRange) {
    const std::vector<StorySegment> story = {moment(1.0, 1e308, "a"), moment(1e308, 1e308, "a")};
    const auto text = PremiereXMLExporter::exportText("P", story, {});
    EXPECT_THAT(text, HasSubstr("<in>24</in>\n            <out>9223372036854775807</out>\n"
                                "            <start>0</start>\n            <end>9223372036854775807</end>\n"));
    EXPECT_THAT(text, HasSubstr("<in>9223372036854775807</in>\n            <out>9223372036854775807</out>\n"
                                "            <start>9223372036854775807</start>\n"
                                "            <end>9223372036854775807</end>\n"));
}

TEST(OddNumbers, withoutARateEverythingIsFrameZero) {
    const std::vector<StorySegment> story = {moment(1.5, 4.0, "a")};
    EXPECT_THAT(EDLExporter::exportText("P", story, {}, 0.0),
                HasSubstr(" 00:00:01:00 00:00:04:00 00:00:00:00 00:00:00:00\n"));
    EXPECT_THAT(PremiereXMLExporter::exportText("P", story, {}, 0.0),
                HasSubstr("<timebase>0</timebase>\n              <ntsc>FALSE</ntsc>\n            </rate>\n"
                          "            <in>0</in>\n            <out>0</out>\n"));
    EXPECT_THAT(FCPXMLExporter::exportText("P", story, {}, 0.0, std::nullopt), HasSubstr("frameDuration=\"100/0s\""));
}

TEST(OddNames, emptyOnesGiveWholeDocuments) {
    const std::vector<StorySegment> story = {moment(0.0, 1.0, ""), moment(1.0, 2.0, "", "", "")};
    const std::vector<MediaFileInfo> files = {footage("", 10.0, Streams::videoWithSound, "")};
    expectWholeDocuments(story, files, 24.0, {{0.0, 1.0, ""}});
    EXPECT_THAT(EDLExporter::exportText("", story, files),
                HasSubstr("TITLE: \nFCM: NON-DROP FRAME\n\n001           V     C        00:00:00:00 "));
}

TEST(OddNames, invalidBytesAndControlCharactersComeOutAsTheyAre) {
    const std::string odd("a\0\x01\xFF\xC3", 5);
    const std::vector<StorySegment> story = {moment(0.0, 1.0, odd, odd, odd)};
    const std::vector<MediaFileInfo> files = {footage(odd, 10.0, Streams::videoWithSound)};
    EXPECT_THAT(EDLExporter::exportText(odd, story, files),
                HasSubstr("* FROM CLIP NAME: " + odd + "\n* COMMENT: " + odd + "\n* CHAPTER: " + odd + "\n"));
    EXPECT_THAT(FCPXMLExporter::exportText(odd, story, files, 24.0, std::nullopt),
                HasSubstr("<project name=\"" + odd + "\">"));
    EXPECT_THAT(PremiereXMLExporter::exportText(odd, story, files), HasSubstr("    <name>" + odd + "</name>\n"));
}

TEST(OddSizes, aHundredThousandSegmentsOnTwoHundredFiles) {
    constexpr std::size_t segmentCount = 100'000;
    std::vector<MediaFileInfo> files;
    for (int i = 0; i < 200; ++i)
        files.push_back(footage("clip_" + std::to_string(i) + ".wav", 600.0, Streams::sound));
    std::vector<StorySegment> story;
    for (std::size_t i = 0; i < segmentCount; ++i) {
        const auto start = static_cast<double>(i * 7 % 120'000);
        story.push_back(moment(start, start + 1.0, "clip_" + std::to_string(i * 7 % 120'000 / 600) + ".wav"));
    }
    // The last of 100,000 events of one second ends at 27:46:40.
    EXPECT_THAT(EDLExporter::exportText("P", story, files),
                HasSubstr("\n100000  clip_166 A     C        00:06:33:00 00:06:34:00 27:46:39:00 27:46:40:00\n"));
    EXPECT_EQ(count(FCPXMLExporter::exportText("P", story, files, 24.0, std::nullopt), "<asset-clip "), segmentCount);
    EXPECT_EQ(count(PremiereXMLExporter::exportText("P", story, files), "<clipitem>"), segmentCount);
}

} // namespace
} // namespace zuvo
