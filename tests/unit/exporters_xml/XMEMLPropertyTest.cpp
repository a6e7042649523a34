// What every XMEML document holds, seen by a reader that did not write it.

#include "unit/exporters_xml/XmlTree.h"

#include "exporters/PremiereXMLExporter.h"
#include "support/RandomStory.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

namespace zuvo {
namespace {

using tests::XmlElement;

constexpr int xmemlStoryCount = 10'000;

/// The text of the child as a whole number; a failure of the running test if it is none.
long long wholeFrames(const XmlElement& element, const std::string& childName) {
    const auto& text = element.one(childName).text;
    long long frames = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), frames);
    EXPECT_TRUE(error == std::errc() && end == text.data() + text.size()) << childName << " " << text;
    return frames;
}

void expectClip(const XmlElement& clip, const StorySegment& segment, double fps, const std::string& mediaType) {
    EXPECT_EQ(clip.one("name").text, segment.sourceClip);
    EXPECT_EQ(clip.one("sourcetrack").one("mediatype").text, mediaType);
    const auto length = wholeFrames(clip, "out") - wholeFrames(clip, "in");
    EXPECT_EQ(length, wholeFrames(clip, "end") - wholeFrames(clip, "start"));
    EXPECT_NEAR(static_cast<double>(length), (segment.endTime - segment.startTime) * fps, 0.5 + 1e-6);
    EXPECT_GE(wholeFrames(clip, "in"), 0);
    EXPECT_GE(wholeFrames(clip, "duration"), 0);
}

/// Start and end of the audio clips adjoin from 0; gives the places where they start, one a segment.
std::vector<long long> readAudio(const XmlElement& audio, const tests::ExportedStory& story) {
    const auto clips = audio.one("track").all("clipitem");
    EXPECT_EQ(clips.size(), story.segments.size());
    std::vector<long long> starts;
    long long place = 0;
    for (std::size_t i = 0; i < std::min(clips.size(), story.segments.size()); ++i) {
        const auto& segment = story.segments[i];
        expectClip(*clips[i], segment, story.fps, "audio");
        EXPECT_EQ(wholeFrames(*clips[i], "start"), place);
        starts.push_back(place);
        place = wholeFrames(*clips[i], "end");
        EXPECT_EQ(clips[i]->all("marker").size(), segment.chapter ? 1U : 0U);
        if (segment.chapter) {
            EXPECT_EQ(clips[i]->one("marker").one("name").text, *segment.chapter);
        }
    }
    return starts;
}

/// Each video clip stands where the audio of its segment does.
void expectVideo(const XmlElement& video, const tests::ExportedStory& story, const std::vector<long long>& starts) {
    for (const auto* clip : video.one("track").all("clipitem")) {
        const auto place = std::find(starts.begin(), starts.end(), wholeFrames(*clip, "start"));
        ASSERT_NE(place, starts.end());
        const auto& segment = story.segments[static_cast<std::size_t>(place - starts.begin())];
        expectClip(*clip, segment, story.fps, "video");
        EXPECT_TRUE(clip->all("marker").empty());
        EXPECT_TRUE(clip->one("file").children.empty());
    }
}

/// A file stands whole at most once, before every reference to it, with a name and path of the list.
void expectFiles(const XmlElement& audio, const tests::ExportedStory& story) {
    std::set<std::string> known;
    for (const auto* clip : audio.one("track").all("clipitem")) {
        const auto& file = clip->one("file");
        const bool isNew = known.insert(file.attribute("id")).second;
        if (isNew) {
            EXPECT_EQ(file.attribute("id"), "file-" + std::to_string(known.size()));
        }
        if (file.children.empty())
            continue;
        EXPECT_TRUE(isNew) << file.attribute("id");
        const auto media = std::find_if(story.mediaFiles.begin(), story.mediaFiles.end(), [&](const auto& candidate) {
            return "file://localhost" + candidate.path == file.one("pathurl").text;
        });
        ASSERT_NE(media, story.mediaFiles.end()) << file.one("pathurl").text;
        EXPECT_EQ(file.one("name").text, media->filename);
        EXPECT_EQ(file.one("media").all("video").size(), media->hasVideo ? 1U : 0U);
        EXPECT_NEAR(static_cast<double>(wholeFrames(file, "duration")), media->duration * story.fps, 0.5 + 1e-6);
    }
}

TEST(XMEMLProperty, documentsAreWellFormedWithClipsInWholeFramesThatAdjoin) {
    tests::RandomStories stories(44);
    std::size_t clips = 0;
    for (int run = 0; run < xmemlStoryCount; ++run) {
        const auto story = stories.next();
        const auto text =
            PremiereXMLExporter::exportText(story.projectName, story.segments, story.mediaFiles, story.fps);
        const auto document = tests::readXml(text);
        ASSERT_EQ(document.error, "") << text;
        EXPECT_EQ(document.documentType, "xmeml");
        EXPECT_EQ(document.root.name, "xmeml");
        const auto& sequence = document.root.one("sequence");
        EXPECT_EQ(sequence.one("name").text, story.projectName);
        const auto& media = sequence.one("media");
        const auto starts = readAudio(media.one("audio"), story);
        expectFiles(media.one("audio"), story);
        const bool hasVideo = std::any_of(story.mediaFiles.begin(), story.mediaFiles.end(),
                                          [](const auto& file) { return file.hasVideo; });
        EXPECT_EQ(media.all("video").size(), hasVideo ? 1U : 0U);
        if (hasVideo)
            expectVideo(media.one("video"), story, starts);
        clips += starts.size();
        if (HasFailure())
            FAIL() << "story " << run << "\n" << text;
    }
    EXPECT_GT(clips, std::size_t{xmemlStoryCount});
}

TEST(XMEMLProperty, aCharacterThatXmlDoesNotKnowMakesADocumentThatReadersRefuse) {
    for (const auto& odd : {std::string("\0", 1), std::string("\x01"), std::string("\xFF")}) {
        const auto text = PremiereXMLExporter::exportText("a" + odd + "b", {}, {});
        EXPECT_NE(text.find("<name>a" + odd + "b</name>"), std::string::npos);
        EXPECT_NE(tests::readXml(text).error, "");
    }
}

} // namespace
} // namespace zuvo
