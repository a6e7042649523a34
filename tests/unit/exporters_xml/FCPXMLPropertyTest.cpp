// What every FCPXML document holds, seen by a reader that did not write it.

#include "unit/exporters_xml/XmlTree.h"

#include "base/Text.h"
#include "exporters/FCPXMLExporter.h"
#include "support/RandomStory.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>

namespace zuvo {
namespace {

using tests::XmlElement;

constexpr int fcpxmlStoryCount = 10'000;

/// Readers take a line end or a tab within an attribute for a blank.
std::string asAttribute(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::replace(text.begin(), text.end(), '\t', ' ');
    return text;
}

/// "12s" or "12/2400s" in seconds.
double seconds(const std::string& text) {
    long long numerator = 0;
    long long denominator = 1;
    const int count = std::sscanf(text.c_str(), "%lld/%lld", &numerator, &denominator);
    EXPECT_GE(count, 1) << text;
    EXPECT_TRUE(text.ends_with('s')) << text;
    return static_cast<double>(numerator) / static_cast<double>(denominator);
}

/// Half of the coarsest step that a rate counts in, 1/2398 s; 47.952 is counted in 1/4795.2 s but written over 4795,
/// which moves times by a share of 0.00005.
void expectSeconds(const std::string& text, double expected) {
    EXPECT_NEAR(seconds(text), expected, 0.5 / 2398.0 + std::abs(expected) * 0.00005);
}

void expectAssets(const XmlElement& resources, const tests::ExportedStory& story) {
    const auto assets = resources.all("asset");
    ASSERT_EQ(assets.size(), story.mediaFiles.size());
    for (std::size_t i = 0; i < assets.size(); ++i) {
        const auto& file = story.mediaFiles[i];
        EXPECT_EQ(assets[i]->attribute("id"), "r" + std::to_string(i + 2));
        EXPECT_EQ(assets[i]->attribute("name"), file.filename);
        EXPECT_EQ(assets[i]->attribute("src"), "file://" + file.path);
        EXPECT_EQ(assets[i]->one("media-rep").attribute("src"), "file://" + file.path);
        expectSeconds(assets[i]->attribute("duration"), file.duration);
        EXPECT_EQ(assets[i]->attributes.count("hasVideo"), file.hasVideo ? 1U : 0U);
        EXPECT_EQ(assets[i]->attributes.count("hasAudio"), file.hasAudio ? 1U : 0U);
    }
}

/// Clips and markers at the same places, end to end in story order.
void expectClipsAndMarkers(const XmlElement& spine, const tests::ExportedStory& story) {
    const auto clips = spine.all("asset-clip");
    const auto markers = spine.all("chapter-marker");
    ASSERT_EQ(clips.size(), story.mediaFiles.empty() ? 0 : story.segments.size());
    ASSERT_EQ(markers.size(), story.segments.size());
    double place = 0.0;
    for (std::size_t i = 0; i < story.segments.size(); ++i) {
        const auto& segment = story.segments[i];
        const double length = segment.endTime - segment.startTime;
        expectSeconds(markers[i]->attribute("start"), place);
        EXPECT_EQ(markers[i]->attribute("value"),
                  asAttribute(segment.chapter.value_or("Chapter " + std::to_string(i + 1))));
        if (!clips.empty()) {
            expectSeconds(clips[i]->attribute("offset"), place);
            expectSeconds(clips[i]->attribute("duration"), length);
            EXPECT_GE(seconds(clips[i]->attribute("start")), 0.0);
            EXPECT_EQ(clips[i]->attribute("name"), asAttribute(firstCharacters(segment.transcript, 50)));
        }
        place += length;
    }
}

void expectCaptions(const XmlElement& spine, const std::vector<Subtitle>& subtitles) {
    ASSERT_EQ(spine.all("caption-lane").size(), subtitles.empty() ? 0U : 1U);
    if (subtitles.empty())
        return;
    const auto captions = spine.one("caption-lane").all("caption");
    ASSERT_EQ(captions.size(), subtitles.size());
    for (std::size_t i = 0; i < subtitles.size(); ++i) {
        EXPECT_EQ(captions[i]->one("text").text, subtitles[i].text);
        expectSeconds(captions[i]->attribute("startOffset"), subtitles[i].startTime);
        expectSeconds(captions[i]->attribute("duration"), subtitles[i].endTime - subtitles[i].startTime);
    }
}

void expectReferencesToAssets(const XmlElement& spine, const XmlElement& resources) {
    std::set<std::string> ids;
    for (const auto* asset : resources.all("asset"))
        ids.insert(asset->attribute("id"));
    for (const auto* clip : spine.all("asset-clip"))
        EXPECT_TRUE(ids.contains(clip->attribute("ref"))) << clip->attribute("ref");
}

TEST(FCPXMLProperty, documentsAreWellFormedAndHoldEveryTextEscapedOnce) {
    tests::RandomStories stories(43);
    std::size_t clips = 0;
    for (int run = 0; run < fcpxmlStoryCount; ++run) {
        const auto story = stories.next();
        const auto text =
            FCPXMLExporter::exportText(story.projectName, story.segments, story.mediaFiles, story.fps, story.subtitles);
        const auto document = tests::readXml(text);
        ASSERT_EQ(document.error, "") << text;
        EXPECT_EQ(document.documentType, "fcpxml");
        EXPECT_EQ(document.root.name, "fcpxml");
        EXPECT_EQ(document.root.attribute("version"), "1.11");
        const auto& resources = document.root.one("resources");
        const auto& project = document.root.one("library").one("event").one("project");
        const auto& spine = project.one("sequence").one("spine");
        EXPECT_EQ(project.attribute("name"), story.projectName);
        expectAssets(resources, story);
        expectReferencesToAssets(spine, resources);
        expectClipsAndMarkers(spine, story);
        expectCaptions(spine, story.subtitles);
        clips += spine.all("asset-clip").size();
        if (HasFailure())
            FAIL() << "story " << run << "\n" << text;
    }
    EXPECT_GT(clips, std::size_t{fcpxmlStoryCount});
}

TEST(FCPXMLProperty, aCharacterThatXmlDoesNotKnowMakesADocumentThatReadersRefuse) {
    for (const auto& odd : {std::string("\0", 1), std::string("\x01"), std::string("\xFF")}) {
        const auto text = FCPXMLExporter::exportText("a" + odd + "b", {}, {}, 24.0, std::nullopt);
        EXPECT_NE(text.find("name=\"a" + odd + "b\""), std::string::npos);
        EXPECT_NE(tests::readXml(text).error, "");
    }
}

} // namespace
} // namespace zuvo
