#include "exporters/PremiereXMLExporter.h"

#include "base/Files.h"
#include "base/Numbers.h"
#include "exporters/MediaIndex.h"
#include "exporters/OffsetMap.h"
#include "exporters/XmlText.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace zuvo {

// The document, each element on a line of its own, two blanks deeper than the one around it:
//
//     xmeml
//       sequence
//         name, duration, rate
//         media
//           audio
//             numOutputChannels
//             track
//               clipitem              for each segment
//                 name, duration, rate, in, out, start, end
//                 file                whole where its media is met first, else only its id
//                 sourcetrack
//                 marker              with the chapter, if the segment has one
//           video                     if any media has video
//             track
//               clipitem              for each segment whose media has video; always only the file's id, no marker
//
// in and out are frames of the file from its first sample, start and end frames of the sequence; clips adjoin.

namespace exporters {

namespace {

/// Room for the text (bytes): a long story's document would else be copied again and again as it grows. A clip item
/// without its texts takes about 550.
constexpr std::size_t roomForClip = 700;
constexpr std::size_t roomForFile = 1400;

bool isNtscRate(double fps) {
    return fps == 29.97 || fps == 23.976 || fps == 59.94;
}

/// The NTSC rates are written one above their nominal rate: 25 for 23.976.
std::int64_t timebaseOf(double fps) {
    return isNtscRate(fps) ? rounded(fps * 1000.0 / 1001.0) + 1 : rounded(fps);
}

/// The one rate of the document, which stands in the sequence, in every clip and in every file.
std::string rateText(double fps, std::size_t depth) {
    const std::string indent(depth, ' ');
    return fmt::format("{0}<rate>\n"
                       "{0}  <timebase>{1}</timebase>\n"
                       "{0}  <ntsc>{2}</ntsc>\n"
                       "{0}</rate>\n",
                       indent, timebaseOf(fps), isNtscRate(fps) ? "TRUE" : "FALSE");
}

/// One segment in frames.
struct ClipFrames {
    std::string_view sourceName; ///< the file it lies in by its time, else the clip that it names
    std::int64_t length = 0;
    std::int64_t in = 0; ///< from the file's first sample
};

class XMEMLDocument {
public:
    XMEMLDocument(const std::vector<StorySegment>& segments, const std::vector<MediaFileInfo>& mediaFiles,
                  const OffsetMap& offsetMap, double fps)
        : m_segments(segments),
          m_mediaFiles(mediaFiles),
          m_offsetMap(offsetMap),
          m_index(mediaFiles),
          m_fps(fps),
          m_totalFrames(totalFrames()),
          m_clipRate(rateText(fps, 12)),
          m_fileRate(rateText(fps, 14)) {}

    std::string build(const std::string& projectName) {
        const std::size_t tracks = hasVideo() ? 2 : 1;
        m_text.reserve(m_segments.size() * tracks * roomForClip + m_mediaFiles.size() * roomForFile);
        append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<!DOCTYPE xmeml>\n"
               "<xmeml version=\"5\">\n"
               "  <sequence>\n"
               "    <name>{}</name>\n"
               "    <duration>{}</duration>\n"
               "{}"
               "    <media>\n",
               xmlEscaped(projectName), m_totalFrames, rateText(m_fps, 4));
        writeAudio();
        if (hasVideo())
            writeVideo();
        m_text += "    </media>\n"
                  "  </sequence>\n"
                  "</xmeml>\n";
        return std::move(m_text);
    }

private:
    template <typename... Arguments>
    void append(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
        fmt::format_to(std::back_inserter(m_text), format, std::forward<Arguments>(arguments)...);
    }

    [[nodiscard]] bool hasVideo() const {
        return std::any_of(m_mediaFiles.begin(), m_mediaFiles.end(),
                           [](const MediaFileInfo& file) { return file.hasVideo; });
    }
    [[nodiscard]] std::int64_t frames(double seconds) const { return rounded(seconds * m_fps); }
    [[nodiscard]] std::int64_t totalFrames() const;
    [[nodiscard]] ClipFrames clipFrames(const StorySegment& segment) const;
    [[nodiscard]] std::int64_t fileFrames(const MediaFileInfo* media) const;
    [[nodiscard]] const MediaFileInfo* mediaNamedAlike(std::string_view name) const;

    void writeAudio();
    void writeAudioClip(const StorySegment& segment, const ClipFrames& clip, std::int64_t start);
    void writeVideo();
    void writeVideoClip(const StorySegment& segment, const ClipFrames& clip, std::int64_t start);
    void writeClipHead(const StorySegment& segment, const ClipFrames& clip, std::int64_t start,
                       const MediaFileInfo* media);
    void writeFile(const std::string& id, const MediaFileInfo& media);
    void writeFileReference(const std::string& id);
    void writeSourceTrack(std::string_view mediaType);

    const std::vector<StorySegment>& m_segments;
    const std::vector<MediaFileInfo>& m_mediaFiles;
    const OffsetMap& m_offsetMap;
    MediaIndex m_index;
    double m_fps;
    std::int64_t m_totalFrames;
    std::string m_clipRate;
    std::string m_fileRate;
    /// "file-{number}" by the media's path, or by the clip's name where there is no media; from 1, in order of first
    /// use. The audio track gives them out, the video track looks them up.
    std::unordered_map<std::string_view, std::string> m_fileIds;
    std::string m_text;
};

std::int64_t XMEMLDocument::totalFrames() const {
    double seconds = 0.0;
    for (const auto& segment : m_segments)
        seconds += segment.endTime - segment.startTime;
    return frames(seconds);
}

ClipFrames XMEMLDocument::clipFrames(const StorySegment& segment) const {
    const auto length = frames(segment.endTime - segment.startTime);
    if (const auto source = resolveSourceTime(segment.startTime, m_offsetMap, SourceOrigin::firstSample))
        return {source->filename, length, frames(source->seconds)};
    return {segment.sourceClip, length, frames(segment.startTime)};
}

/// A file that is not known is taken to be as long as the sequence.
std::int64_t XMEMLDocument::fileFrames(const MediaFileInfo* media) const {
    return media != nullptr ? frames(media->duration) : m_totalFrames;
}

const MediaFileInfo* XMEMLDocument::mediaNamedAlike(std::string_view name) const {
    const auto position = m_index.namedAlike(name);
    return position ? &m_mediaFiles[*position] : nullptr;
}

void XMEMLDocument::writeAudio() {
    m_text += "      <audio>\n"
              "        <numOutputChannels>2</numOutputChannels>\n"
              "        <track>\n";
    std::int64_t timelinePosition = 0;
    for (const auto& segment : m_segments) {
        const auto clip = clipFrames(segment);
        writeAudioClip(segment, clip, timelinePosition);
        timelinePosition = saturatingSum(timelinePosition, clip.length);
    }
    m_text += "        </track>\n"
              "      </audio>\n";
}

void XMEMLDocument::writeAudioClip(const StorySegment& segment, const ClipFrames& clip, std::int64_t start) {
    const auto* media = mediaNamedAlike(clip.sourceName);
    if (media == nullptr)
        media = mediaNamedAlike(segment.sourceClip);
    const std::string_view fileKey = media != nullptr ? media->path : segment.sourceClip;
    const auto [entry, isFirstUse] = m_fileIds.try_emplace(fileKey);
    if (isFirstUse)
        entry->second = fmt::format("file-{}", m_fileIds.size());

    writeClipHead(segment, clip, start, media);
    if (isFirstUse && media != nullptr)
        writeFile(entry->second, *media);
    else
        writeFileReference(entry->second);
    writeSourceTrack("audio");
    if (segment.chapter)
        append("            <marker>\n"
               "              <name>{}</name>\n"
               "              <in>0</in>\n"
               "              <out>-1</out>\n"
               "            </marker>\n",
               xmlEscaped(*segment.chapter));
    m_text += "          </clipitem>\n";
}

void XMEMLDocument::writeVideo() {
    m_text += "      <video>\n"
              "        <track>\n";
    std::int64_t timelinePosition = 0;
    for (const auto& segment : m_segments) {
        const auto clip = clipFrames(segment);
        writeVideoClip(segment, clip, timelinePosition);
        timelinePosition = saturatingSum(timelinePosition, clip.length);
    }
    m_text += "        </track>\n"
              "      </video>\n";
}

void XMEMLDocument::writeVideoClip(const StorySegment& segment, const ClipFrames& clip, std::int64_t start) {
    // The clip's own name is not asked here, as it is for the sound.
    const auto* media = mediaNamedAlike(clip.sourceName);
    if (media == nullptr || !media->hasVideo)
        return;
    const auto id = m_fileIds.find(media->path);
    writeClipHead(segment, clip, start, media);
    writeFileReference(id != m_fileIds.end() ? id->second : "file-1");
    writeSourceTrack("video");
    m_text += "          </clipitem>\n";
}

void XMEMLDocument::writeClipHead(const StorySegment& segment, const ClipFrames& clip, std::int64_t start,
                                  const MediaFileInfo* media) {
    append("          <clipitem>\n"
           "            <name>{}</name>\n"
           "            <duration>{}</duration>\n"
           "{}"
           "            <in>{}</in>\n"
           "            <out>{}</out>\n"
           "            <start>{}</start>\n"
           "            <end>{}</end>\n",
           xmlEscaped(segment.sourceClip), fileFrames(media), m_clipRate, clip.in, saturatingSum(clip.in, clip.length),
           start, saturatingSum(start, clip.length));
}

void XMEMLDocument::writeFile(const std::string& id, const MediaFileInfo& media) {
    append("            <file id=\"{}\">\n"
           "              <name>{}</name>\n"
           "              <pathurl>file://localhost{}</pathurl>\n"
           "              <duration>{}</duration>\n"
           "{}",
           id, xmlEscaped(media.filename), xmlEscaped(media.path), fileFrames(&media), m_fileRate);
    m_text += "              <media>\n"
              "                <audio>\n"
              "                  <channelcount>2</channelcount>\n"
              "                  <samplecharacteristics>\n"
              "                    <depth>16</depth>\n"
              "                    <samplerate>48000</samplerate>\n"
              "                  </samplecharacteristics>\n"
              "                </audio>\n";
    if (media.hasVideo)
        m_text += "                <video>\n"
                  "                  <samplecharacteristics>\n"
                  "                    <width>1920</width>\n"
                  "                    <height>1080</height>\n"
                  "                  </samplecharacteristics>\n"
                  "                </video>\n";
    m_text += "              </media>\n"
              "            </file>\n";
}

void XMEMLDocument::writeFileReference(const std::string& id) {
    append("            <file id=\"{}\"/>\n", id);
}

void XMEMLDocument::writeSourceTrack(std::string_view mediaType) {
    append("            <sourcetrack>\n"
           "              <mediatype>{}</mediatype>\n"
           "              <trackindex>1</trackindex>\n"
           "            </sourcetrack>\n",
           mediaType);
}

std::string buildXMEML(const std::string& projectName, const std::vector<StorySegment>& segments,
                       const std::vector<MediaFileInfo>& mediaFiles, const OffsetMap& offsetMap, double fps) {
    return XMEMLDocument(segments, mediaFiles, offsetMap, fps).build(projectName);
}

} // namespace

} // namespace exporters

std::string PremiereXMLExporter::exportText(const std::string& projectName, const std::vector<StorySegment>& segments,
                                            const std::vector<MediaFileInfo>& mediaFiles, double fps) {
    return exporters::buildXMEML(projectName, segments, mediaFiles, exporters::buildOffsetMap(mediaFiles), fps);
}

std::error_code PremiereXMLExporter::exportToFile(const std::string& path, const std::string& projectName,
                                                  const std::vector<StorySegment>& segments,
                                                  const std::vector<MediaFileInfo>& mediaFiles, double fps) {
    return fileReplacementError(path, exportText(projectName, segments, mediaFiles, fps), Readers::asUsual);
}

} // namespace zuvo
