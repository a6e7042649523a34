// A story and its media by their figures, one record a line, through each exporter: whatever the times are, each moment
// has its event and no document says "nan" or "inf".
//
//     R {frame rate}
//     M {seconds} {timecode} {frame rate} {file name}
//     S {start} {end} {file name}
//     C {start} {end} {text}

#include "Fuzzing.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/MediaList.h"
#include "exporters/OffsetMap.h"
#include "exporters/PremiereXMLExporter.h"

#include <cstddef>
#include <string>
#include <vector>

using namespace zuvo;

namespace {

constexpr std::size_t recordLimit = 100;

struct Story {
    double fps = 24.0;
    std::vector<MediaFileInfo> media;
    std::vector<StorySegment> segments;
    std::vector<Subtitle> captions;
};

using Words = std::vector<std::string_view>;

double number(const Words& words, std::size_t i) {
    return i < words.size() ? parseDouble(words[i]).value_or(0.0) : 0.0;
}

std::string word(const Words& words, std::size_t i) {
    return i < words.size() ? std::string(words[i]) : std::string();
}

void readRecord(const Words& words, Story& story) {
    if (words[0] == "R")
        story.fps = number(words, 1);
    else if (words[0] == "M")
        story.media.push_back({"/media/" + word(words, 4), word(words, 4), number(words, 1), word(words, 2),
                               number(words, 3), words.size() % 2 == 0, true, std::nullopt});
    else if (words[0] == "S")
        story.segments.push_back({static_cast<std::int64_t>(story.segments.size()), number(words, 1), number(words, 2),
                                  word(words, 3), "", "", std::nullopt});
    else if (words[0] == "C")
        story.captions.push_back({number(words, 1), number(words, 2), word(words, 3)});
}

Story readStory(std::string_view text) {
    Story story;
    const auto lines = split(text, '\n');
    for (std::size_t i = 0; i < lines.size() && i < recordLimit; ++i) {
        if (const auto words = splitAtBlanks(lines[i]); !words.empty())
            readRecord(words, story);
    }
    return story;
}

std::size_t occurrences(std::string_view text, std::string_view what) {
    std::size_t count = 0;
    for (auto at = text.find(what); at != std::string_view::npos; at = text.find(what, at + what.size()))
        ++count;
    return count;
}

void requireNumbers(const std::string& document, std::string_view input) {
    // A name may hold the letters.
    if (input.find("na") == std::string_view::npos)
        fuzzing::require(document.find("nan") == std::string::npos);
    if (input.find("in") == std::string_view::npos) {
        fuzzing::require(document.find("\"inf") == std::string::npos);
        fuzzing::require(document.find(">inf") == std::string::npos && document.find(">-inf") == std::string::npos);
    }
}

} // namespace

ZUVO_FUZZ_TARGET {
    const auto story = readStory(text);

    const auto edl = EDLExporter::exportText("Cut", story.segments, story.media, story.fps);
    fuzzing::require(occurrences(edl, "* FROM CLIP NAME: ") >= story.segments.size());

    const auto fcpxml = FCPXMLExporter::exportText("Cut", story.segments, story.media, story.fps, story.captions);
    fuzzing::require(fcpxml.ends_with("\n</fcpxml>\n"));
    fuzzing::require(occurrences(fcpxml, "<chapter-marker ") == story.segments.size());
    requireNumbers(fcpxml, text);

    const auto xmeml = PremiereXMLExporter::exportText("Cut", story.segments, story.media, story.fps);
    fuzzing::require(xmeml.ends_with("</xmeml>\n"));
    requireNumbers(xmeml, text);

    double end = 0.0;
    for (const auto& entry : exporters::buildOffsetMap(story.media)) {
        fuzzing::require(entry.seqStart == end || end != end);
        end = entry.seqEnd;
    }
    fuzzing::require(createDummyMediaInfo(story.segments).size() <= story.segments.size());
}
