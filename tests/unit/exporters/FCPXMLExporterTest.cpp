#include "exporters/FCPXMLExporter.h"

#include "support/StoryRecords.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

using testing::HasSubstr;
using testing::Not;
using tests::footage;
using tests::moment;
using tests::Streams;

std::string document(const std::vector<StorySegment>& segments, const std::vector<MediaFileInfo>& mediaFiles,
                     double fps = 24.0) {
    return FCPXMLExporter::exportText("P", segments, mediaFiles, fps, std::nullopt);
}

/// The attributes of the document's one clip; empty if there is none.
std::string clip(const StorySegment& segment, const std::vector<MediaFileInfo>& mediaFiles, double fps = 24.0) {
    const auto text = document({segment}, mediaFiles, fps);
    const std::string opening = "\n            <asset-clip ";
    const auto start = text.find(opening);
    if (start == std::string::npos)
        return {};
    const auto from = start + opening.size();
    return text.substr(from, text.find("/>\n", from) - from);
}

/// The document's line that begins so, indentation included.
std::string line(const std::string& text, const std::string& beginning) {
    const auto start = text.find("\n" + beginning);
    return start == std::string::npos ? std::string() : text.substr(start + 1, text.find('\n', start + 1) - start - 1);
}

TEST(FCPXML, withoutSegmentsTheSpineIsEmpty) {
    EXPECT_THAT(document({}, {footage("a.mov", 9.0, Streams::videoWithSound)}),
                HasSubstr("        <sequence format=\"r1\" duration=\"0s\" tcStart=\"0s\" tcFormat=\"NDF\""
                          " audioLayout=\"stereo\" audioRate=\"48k\">\n"
                          "          <spine>\n"
                          "          </spine>\n"
                          "        </sequence>\n"));
}

TEST(FCPXML, withoutMediaTheResourcesAreTheFormatAndMarkersAndCaptionsStand) {
    const auto text = FCPXMLExporter::exportText("P", {moment(0.0, 2.0, "a.mov"), moment(5.0, 6.0, "b.mov")}, {}, 24.0,
                                                 std::vector<Subtitle>{{0.0, 1.0, "Hi"}});
    EXPECT_THAT(text, HasSubstr("  <resources>\n"
                                "    <format id=\"r1\" frameDuration=\"100/2400s\" width=\"1920\" height=\"1080\""
                                " colorSpace=\"1-1-1 (Rec. 709)\"/>\n"
                                "  </resources>\n"));
    EXPECT_THAT(text,
                HasSubstr("          <spine>\n"
                          "            <caption-lane>\n"
                          "          <caption startOffset=\"0s\" duration=\"1s\" role=\"closedCaption\">\n"
                          "            <text>Hi</text>\n"
                          "          </caption>\n"
                          "            </caption-lane>\n"
                          "            <chapter-marker start=\"0s\" duration=\"100/2400s\" value=\"Chapter 1\"/>\n"
                          "            <chapter-marker start=\"2s\" duration=\"100/2400s\" value=\"Chapter 2\"/>\n"
                          "          </spine>\n"));
}

TEST(FCPXML, countsAt24UnlessToldOtherwise) {
    const std::vector<StorySegment> story = {moment(0.5, 1.75, "a.mov")};
    const std::vector<MediaFileInfo> files = {footage("a.mov", 9.0, Streams::video)};
    const std::vector<Subtitle> subtitles = {{0.0, 1.3, "Hi"}};
    EXPECT_EQ(FCPXMLExporter::exportText("P", story, files, subtitles),
              FCPXMLExporter::exportText("P", story, files, 24.0, subtitles));
}

TEST(FCPXML, noSubtitlesAndAnEmptyListAreTheSame) {
    const std::vector<StorySegment> story = {moment(0.0, 1.0, "a.mov")};
    const auto none = FCPXMLExporter::exportText("P", story, {}, 24.0, std::nullopt);
    EXPECT_EQ(FCPXMLExporter::exportText("P", story, {}, 24.0, std::vector<Subtitle>()), none);
    EXPECT_THAT(none, Not(HasSubstr("caption")));
}

struct DocumentRate {
    double fps;
    const char* frame;
};

class FCPXMLDocumentRates : public testing::TestWithParam<DocumentRate> {};

TEST_P(FCPXMLDocumentRates, standInTheFormatAndInEveryMarker) {
    const auto text = document({moment(0.0, 1.0, "a")}, {}, GetParam().fps);
    EXPECT_THAT(text, HasSubstr(std::string("<format id=\"r1\" frameDuration=\"") + GetParam().frame + "\" "));
    EXPECT_THAT(text, HasSubstr(std::string("<chapter-marker start=\"0s\" duration=\"") + GetParam().frame + "\" "));
}

INSTANTIATE_TEST_SUITE_P(Listed, FCPXMLDocumentRates,
                         testing::Values(DocumentRate{23.976, "1001/24000s"}, DocumentRate{24.0, "100/2400s"},
                                         DocumentRate{25.0, "100/2500s"}, DocumentRate{29.97, "1001/30000s"},
                                         DocumentRate{30.0, "100/3000s"}, DocumentRate{50.0, "100/5000s"},
                                         DocumentRate{59.94, "1001/60000s"}, DocumentRate{60.0, "100/6000s"}));
INSTANTIATE_TEST_SUITE_P(Others, FCPXMLDocumentRates,
                         testing::Values(DocumentRate{23.98, "100/2398s"}, DocumentRate{47.952, "100/4795s"}));

TEST(FCPXMLAsset, tellsItsStreams) {
    const auto asset = [](Streams streams) { return line(document({}, {footage("a", 9.0, streams)}), "    <asset "); };
    const std::string begin = "    <asset id=\"r2\" name=\"a\" src=\"file:///footage/a\" start=\"0s\" duration=\"9s\"";
    const std::string video = " hasVideo=\"1\" videoSources=\"1\"";
    const std::string sound = " hasAudio=\"1\" audioSources=\"1\" audioChannels=\"2\" audioRate=\"48000\"";
    EXPECT_EQ(asset(Streams::sound), begin + sound + ">");
    EXPECT_EQ(asset(Streams::video), begin + video + ">");
    EXPECT_EQ(asset(Streams::videoWithSound), begin + video + sound + ">");
    auto silent = footage("a", 9.0, Streams::video);
    silent.hasVideo = false;
    EXPECT_EQ(line(document({}, {silent}), "    <asset "), begin + ">");
}

TEST(FCPXMLAsset, tellsAStartTimecodeAboveZeroReadAtTheExportsRate) {
    const auto start = [](std::optional<std::string> timecode, double fps) {
        const auto asset =
            line(document({}, {footage("a", 9.0, Streams::video, std::move(timecode))}, fps), "    <asset ");
        const auto from = asset.find(" tcStart");
        return from == std::string::npos ? "" : asset.substr(from, asset.find(" hasVideo") - from);
    };
    EXPECT_EQ(start("01:00:00:15", 30.0), " tcStart=\"10801500/3000s\" tcFormat=\"NDF\"");
    EXPECT_EQ(start("01:00:00:15", 25.0), " tcStart=\"9001500/2500s\" tcFormat=\"NDF\"");
    EXPECT_EQ(start("00:00:00:01", 24.0), " tcStart=\"100/2400s\" tcFormat=\"NDF\"");
    EXPECT_EQ(start("00:00:00:00", 24.0), "");
    EXPECT_EQ(start("-01:00:00:00", 24.0), "");
    EXPECT_EQ(start("01:00:00;15", 29.97), "");
    EXPECT_EQ(start(std::nullopt, 24.0), "");
}

TEST(FCPXMLAsset, eachFileIsOneInTheOrderGiven) {
    const auto text = document({}, {footage("late", 9.0, Streams::video, "02:00:00:00"),
                                    footage("early", 9.0, Streams::video, "01:00:00:00")});
    EXPECT_THAT(text, HasSubstr("<asset id=\"r2\" name=\"late\""));
    EXPECT_THAT(text, HasSubstr("<asset id=\"r3\" name=\"early\""));
}

TEST(FCPXMLAsset, anAmpersandIsEscapedInNameAndPathAndNothingIsPercentEncoded) {
    EXPECT_THAT(document({}, {footage("Tom & Jo #1 100%.mov", 9.0, Streams::video)}),
                HasSubstr(" name=\"Tom &amp; Jo #1 100%.mov\" src=\"file:///footage/Tom &amp; Jo #1 100%.mov\" "));
    EXPECT_THAT(
        document({}, {footage("Tom & Jo #1 100%.mov", 9.0, Streams::video)}),
        HasSubstr("\n      <media-rep kind=\"original-media\" src=\"file:///footage/Tom &amp; Jo #1 100%.mov\"/>\n"));
}

TEST(FCPXMLClip, itsAttributesInOrder) {
    EXPECT_EQ(clip(moment(1.0, 3.5, "a.mov", "\"Hi\""), {footage("a.mov", 9.0, Streams::videoWithSound)}),
              "ref=\"r2\" offset=\"0s\" name=\"&quot;Hi&quot;\" start=\"1s\" duration=\"6000/2400s\" tcFormat=\"NDF\""
              " audioRole=\"dialogue\"");
    EXPECT_EQ(clip(moment(1.0, 3.5, "a.mov"), {footage("a.mov", 9.0, Streams::video)}),
              "ref=\"r2\" offset=\"0s\" name=\"\" start=\"1s\" duration=\"6000/2400s\" tcFormat=\"NDF\"");
}

TEST(FCPXMLClip, isNamedByTheFirst50CharactersOfWhatIsSaid) {
    const auto named = [](const std::string& transcript) {
        return clip(moment(0.0, 1.0, "a", transcript), {footage("a", 9.0, Streams::video)});
    };
    EXPECT_THAT(named(std::string(50, 'x')), HasSubstr(" name=\"" + std::string(50, 'x') + "\""));
    EXPECT_THAT(named(std::string(51, 'x')), HasSubstr(" name=\"" + std::string(50, 'x') + "\""));
    EXPECT_THAT(named(std::string(49, '&') + "👩‍👩‍👧x"), HasSubstr(";👩‍👩‍👧\""));
}

TEST(FCPXMLClip, isCountedFromTheFilesFirstSampleWhateverItsTimecode) {
    const std::vector<MediaFileInfo> files = {footage("a", 9.0, Streams::video, "01:00:00:00"),
                                              footage("b", 9.0, Streams::video, "02:00:00:00")};
    EXPECT_THAT(clip(moment(10.0, 11.0, "b"), files), HasSubstr("ref=\"r3\" offset=\"0s\" name=\"\" start=\"1s\" "));
    EXPECT_THAT(clip(moment(30.0, 31.0, "b"), files), HasSubstr("ref=\"r3\" offset=\"0s\" name=\"\" start=\"21s\" "));
}

TEST(FCPXMLClip, beforeTheFirstFileIsCountedFromItsMediasTimecode) {
    EXPECT_THAT(clip(moment(-1.0, 1.0, "a"), {footage("a", 9.0, Streams::video, "00:01:00:15")}, 30.0),
                HasSubstr(" start=\"178500/3000s\" duration=\"2s\""));
    EXPECT_THAT(clip(moment(-1.0, 1.0, "a"), {footage("a", 9.0, Streams::video)}), HasSubstr(" start=\"-1s\" "));
}

class FCPXMLClipMedia : public testing::Test {
protected:
    /// Mine time 0 to 9 and 9 to 18.
    std::vector<MediaFileInfo> files = {footage("interview_1.mov", 9.0, Streams::video),
                                        footage("interview_10.mov", 9.0, Streams::video)};

    [[nodiscard]] std::string reference(double start, const std::string& name) const {
        const auto attributes = clip(moment(start, start + 1.0, name), files);
        return attributes.substr(0, attributes.find(" offset"));
    }
};

TEST_F(FCPXMLClipMedia, isTheFileThatItNames) {
    EXPECT_EQ(reference(0.0, "interview_10.mov"), "ref=\"r3\"");
    EXPECT_EQ(reference(0.0, "interview_10.wav"), "ref=\"r3\"");
    EXPECT_EQ(reference(9.0, "interview_1"), "ref=\"r2\"");
}

TEST_F(FCPXMLClipMedia, isTheFileWhoseNameContainsTheClips) {
    EXPECT_EQ(reference(0.0, "_10"), "ref=\"r3\"");
    EXPECT_EQ(reference(9.0, "view"), "ref=\"r2\"");
    EXPECT_EQ(reference(9.0, ""), "ref=\"r2\"");
}

TEST_F(FCPXMLClipMedia, elseTheFileItLiesIn) {
    EXPECT_EQ(reference(8.0, "elsewhere.mov"), "ref=\"r2\"");
    EXPECT_EQ(reference(9.0, "elsewhere.mov"), "ref=\"r3\"");
    EXPECT_EQ(reference(99.0, "elsewhere.mov"), "ref=\"r3\"");
}

TEST_F(FCPXMLClipMedia, elseTheFirstFileGiven) {
    files[0].startTimecode = "05:00:00:00";
    EXPECT_EQ(reference(-1.0, "elsewhere.mov"), "ref=\"r2\"");
}

TEST_F(FCPXMLClipMedia, ofTwoFilesOfOneNameIsTheFirst) {
    files = {footage("a", 9.0, Streams::video, "02:00:00:00"), footage("a", 9.0, Streams::video, "01:00:00:00")};
    EXPECT_EQ(reference(0.0, "a"), "ref=\"r2\"");
    EXPECT_EQ(reference(9.0, "elsewhere"), "ref=\"r2\"");
}

TEST(FCPXMLMarkers, everySegmentHasOneAtItsPlaceOnTheTimeline) {
    const auto text = document({moment(0.0, 1.5, "a", "", "One"), moment(7.0, 8.0, "a", "", "One"),
                                moment(3.0, 4.0, "a"), moment(5.0, 6.0, "a", "", ""), moment(5.0, 6.0, "a", "", "<&>")},
                               {});
    EXPECT_THAT(
        text,
        HasSubstr("<spine>\n"
                  "            <chapter-marker start=\"0s\" duration=\"100/2400s\" value=\"One\"/>\n"
                  "            <chapter-marker start=\"3600/2400s\" duration=\"100/2400s\" value=\"One\"/>\n"
                  "            <chapter-marker start=\"6000/2400s\" duration=\"100/2400s\" value=\"Chapter 3\"/>\n"
                  "            <chapter-marker start=\"8400/2400s\" duration=\"100/2400s\" value=\"\"/>\n"
                  "            <chapter-marker start=\"10800/2400s\" duration=\"100/2400s\" value=\"&lt;&amp;&gt;\"/>\n"
                  "          </spine>"));
}

TEST(FCPXMLCaptions, standAtTheirOwnTimesInTheirOwnOrder) {
    const auto text =
        FCPXMLExporter::exportText("P", {}, {}, 24.0, std::vector<Subtitle>{{7.5, 9.0, "b"}, {1.0, 0.5, "<a>\n&"}});
    EXPECT_THAT(text, HasSubstr("            <caption-lane>\n"
                                "          <caption startOffset=\"18000/2400s\" duration=\"3600/2400s\""
                                " role=\"closedCaption\">\n"
                                "            <text>b</text>\n"
                                "          </caption>\n"
                                "          <caption startOffset=\"1s\" duration=\"-1200/2400s\""
                                " role=\"closedCaption\">\n"
                                "            <text>&lt;a&gt;\n&amp;</text>\n"
                                "          </caption>\n"
                                "            </caption-lane>\n"));
}

TEST(FCPXML, theProjectNameIsEscaped) {
    EXPECT_THAT(FCPXMLExporter::exportText("A & \"B\"", {}, {}, 24.0, std::nullopt),
                HasSubstr("\n      <project name=\"A &amp; &quot;B&quot;\">\n"));
}

} // namespace
} // namespace zuvo
