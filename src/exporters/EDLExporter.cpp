#include "exporters/EDLExporter.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "exporters/MediaIndex.h"
#include "exporters/OffsetMap.h"
#include "exporters/Timecode.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <iterator>

namespace zuvo {

// The list:
//
//     TITLE: {project}\n
//     FCM: NON-DROP FRAME\n
//     \n
//
// and for each segment:
//
//     {number, 3 digits}  {reel, 8 wide} {V or A}     C        {source in} {source out} {record in} {record out}\n
//     * FROM CLIP NAME: {clip}\n
//     * COMMENT: {beginning of what is said}\n      only if anything is said
//     * CHAPTER: {chapter}\n                        only with a chapter, which may be empty
//     \n
//
// The columns are single blanks: a number beyond 999 moves them.

namespace exporters {

namespace {

/// Characters of a clip's name that a reel may have, and the width of its column.
constexpr std::size_t reelWidth = 8;
/// Characters of the transcript that stand in an event's comment.
constexpr std::size_t commentCharacters = 60;

constexpr std::array<std::string_view, 5> soundExtensions = {"wav", "aif", "aiff", "mp3", "flac"};

/// Where a segment lies in its source (seconds).
struct SourceSpan {
    double in;
    double out;
};

SourceSpan sourceSpan(const StorySegment& segment, const OffsetMap& offsetMap) {
    if (const auto start = resolveSourceTime(segment.startTime, offsetMap, SourceOrigin::fileTimecode))
        return {start->seconds, start->seconds + (segment.endTime - segment.startTime)};
    return {segment.startTime, segment.endTime};
}

bool isSoundByItsExtension(std::string_view clip) {
    // No letter but their own has one of theirs as its lower-case form.
    const auto extension = asciiLowered(pathExtension(clip));
    return std::find(soundExtensions.begin(), soundExtensions.end(), extension) != soundExtensions.end();
}

char trackOf(std::string_view clip, const std::vector<MediaFileInfo>& mediaFiles, const MediaIndex& index) {
    if (const auto position = index.namedAlike(clip))
        return mediaFiles[*position].hasVideo ? 'V' : 'A';
    return isSoundByItsExtension(clip) ? 'A' : 'V';
}

std::string paddedReel(std::string_view clip) {
    auto reel = reelName(clip);
    reel.append(reelWidth - characterCount(reel), ' ');
    return reel;
}

void appendRemarks(std::string& text, const StorySegment& segment) {
    text += "* FROM CLIP NAME: " + segment.sourceClip + "\n";
    if (!segment.transcript.empty())
        text += "* COMMENT: " + firstCharacters(segment.transcript, commentCharacters) + "\n";
    if (segment.chapter)
        text += "* CHAPTER: " + *segment.chapter + "\n";
}

} // namespace

std::string reelName(std::string_view filename) {
    return firstCharacters(withoutExtension(filename), reelWidth);
}

} // namespace exporters

std::string EDLExporter::exportText(const std::string& projectName, const std::vector<StorySegment>& segments,
                                    const std::vector<MediaFileInfo>& mediaFiles, double fps) {
    const auto offsetMap = exporters::buildOffsetMap(mediaFiles);
    const exporters::MediaIndex index(mediaFiles);
    std::string text = "TITLE: " + projectName + "\nFCM: NON-DROP FRAME\n\n";
    auto recordIn = Timecode::zero(fps);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const auto& segment = segments[i];
        const auto source = exporters::sourceSpan(segment, offsetMap);
        // Made anew from whole frames at each event, so that the record side has no gaps; what is less than a frame is
        // lost each time.
        const auto recordOut = recordIn + (segment.endTime - segment.startTime);
        fmt::format_to(std::back_inserter(text), "{:03d}  {} {}     C        {} {} {} {}\n", i + 1,
                       exporters::paddedReel(segment.sourceClip),
                       exporters::trackOf(segment.sourceClip, mediaFiles, index),
                       Timecode(source.in, fps).description(), Timecode(source.out, fps).description(),
                       recordIn.description(), recordOut.description());
        exporters::appendRemarks(text, segment);
        text += '\n';
        recordIn = recordOut;
    }
    return text;
}

std::error_code EDLExporter::exportToFile(const std::string& path, const std::string& projectName,
                                          const std::vector<StorySegment>& segments,
                                          const std::vector<MediaFileInfo>& mediaFiles, double fps) {
    return fileReplacementError(path, exportText(projectName, segments, mediaFiles, fps), Readers::asUsual);
}

} // namespace zuvo
