#include "exporters/FCPXMLExporter.h"

#include "base/Files.h"
#include "base/Text.h"
#include "exporters/FCPXMLTime.h"
#include "exporters/MediaIndex.h"
#include "exporters/OffsetMap.h"
#include "exporters/XmlText.h"

#include <fmt/format.h>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace zuvo {

// The document, every piece behind the head on a line of its own that it begins itself:
//
//     <?xml version="1.0" encoding="UTF-8"?>
//     <!DOCTYPE fcpxml>
//     <fcpxml version="1.11">
//       <resources>
//         <format id="r1" .../>
//         <asset id="r2" ...>                            for each media file
//           <media-rep kind="original-media" .../>
//         </asset>
//       </resources>
//       <library>
//         <event name="Zuvo Export">
//           <project name="...">
//             <sequence format="r1" ...>
//               <spine>
//                 <asset-clip ref="r2" .../>             for each segment whose media is known
//                 <caption-lane>                         if there are subtitles; its captions stand two blanks
//               <caption ...>                            further left than the lane
//                 <text>...</text>
//               </caption>
//                 </caption-lane>
//                 <chapter-marker .../>                  for each segment
//               </spine>
//             </sequence>
//           </project>
//         </event>
//       </library>
//     </fcpxml>

namespace exporters {

namespace {

/// Characters of the transcript that name a clip.
constexpr std::size_t clipNameCharacters = 50;
/// The id of the first asset; 1 is the format's.
constexpr std::size_t firstAssetNumber = 2;

/// Room for the text (bytes): a long story's document would else be copied again and again as it grows. A clip and its
/// marker without their texts take about 250, an asset 300.
constexpr std::size_t roomForSegment = 400;
constexpr std::size_t roomForAsset = 500;

class FCPXMLDocument {
public:
    FCPXMLDocument(const std::vector<MediaFileInfo>& mediaFiles, double fps)
        : m_mediaFiles(mediaFiles), m_fps(fps), m_offsetMap(buildOffsetMap(mediaFiles)), m_index(mediaFiles) {}

    std::string build(const std::string& projectName, const std::vector<StorySegment>& segments,
                      const std::optional<std::vector<Subtitle>>& subtitles) {
        m_text.reserve(segments.size() * roomForSegment + m_mediaFiles.size() * roomForAsset);
        m_text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<!DOCTYPE fcpxml>\n"
                 "<fcpxml version=\"1.11\">";
        generateResources();
        m_text += "\n  <library>"
                  "\n    <event name=\"Zuvo Export\">";
        generateProject(projectName, segments, subtitles);
        m_text += "\n    </event>"
                  "\n  </library>"
                  "\n</fcpxml>\n";
        return std::move(m_text);
    }

private:
    template <typename... Arguments>
    void append(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
        fmt::format_to(std::back_inserter(m_text), format, std::forward<Arguments>(arguments)...);
    }

    [[nodiscard]] std::string rational(double seconds) const { return FCPXMLTime::rational(seconds, m_fps); }

    /// The file's start timecode in seconds, read at the export's rate; 0.0 without one.
    [[nodiscard]] double startSeconds(const MediaFileInfo& file) const {
        return timecodeToSeconds(file.startTimecode, m_fps).value_or(0.0);
    }

    void generateResources();
    void generateAsset(const MediaFileInfo& file, std::size_t number);
    void generateProject(const std::string& projectName, const std::vector<StorySegment>& segments,
                         const std::optional<std::vector<Subtitle>>& subtitles);
    void generateClips(const std::vector<StorySegment>& segments);
    void generateClip(const StorySegment& segment, double timelineOffset);
    void generateCaptions(const std::vector<Subtitle>& subtitles);
    void generateChapterMarkers(const std::vector<StorySegment>& segments);
    void generateChapterMarker(const std::string& title, double offset);

    [[nodiscard]] const MediaFileInfo* mediaOf(const StorySegment& segment, const std::optional<SourceTime>& source);
    [[nodiscard]] std::optional<std::size_t> mediaByClipName(const std::string& clip);

    const std::vector<MediaFileInfo>& m_mediaFiles;
    double m_fps;
    OffsetMap m_offsetMap;
    MediaIndex m_index;
    /// What was found for a clip's name: the search goes through all files, and a story has few sources.
    std::unordered_map<std::string, std::optional<std::size_t>> m_foundByClipName;
    std::string m_text;
};

void FCPXMLDocument::generateResources() {
    m_text += "\n  <resources>";
    append("\n    <format id=\"r1\" frameDuration=\"{}\" width=\"1920\" height=\"1080\""
           " colorSpace=\"1-1-1 (Rec. 709)\"/>",
           FCPXMLTime::frameDuration(m_fps));
    for (std::size_t i = 0; i < m_mediaFiles.size(); ++i)
        generateAsset(m_mediaFiles[i], i + firstAssetNumber);
    m_text += "\n  </resources>";
}

void FCPXMLDocument::generateAsset(const MediaFileInfo& file, std::size_t number) {
    const auto path = xmlEscaped(file.path);
    append("\n    <asset id=\"r{}\" name=\"{}\" src=\"file://{}\" start=\"0s\" duration=\"{}\"", number,
           xmlEscaped(file.filename), path, rational(file.duration));
    if (const double start = startSeconds(file); start > 0.0)
        append(R"( tcStart="{}" tcFormat="NDF")", rational(start));
    if (file.hasVideo)
        m_text += R"( hasVideo="1" videoSources="1")";
    if (file.hasAudio)
        m_text += R"( hasAudio="1" audioSources="1" audioChannels="2" audioRate="48000")";
    append(">\n      <media-rep kind=\"original-media\" src=\"file://{}\"/>\n    </asset>", path);
}

void FCPXMLDocument::generateProject(const std::string& projectName, const std::vector<StorySegment>& segments,
                                     const std::optional<std::vector<Subtitle>>& subtitles) {
    double total = 0.0;
    for (const auto& segment : segments)
        total += segment.endTime - segment.startTime;
    append("\n      <project name=\"{}\">", xmlEscaped(projectName));
    append("\n        <sequence format=\"r1\" duration=\"{}\" tcStart=\"0s\" tcFormat=\"NDF\" audioLayout=\"stereo\""
           " audioRate=\"48k\">",
           rational(total));
    m_text += "\n          <spine>";
    generateClips(segments);
    if (subtitles && !subtitles->empty())
        generateCaptions(*subtitles);
    generateChapterMarkers(segments);
    m_text += "\n          </spine>"
              "\n        </sequence>"
              "\n      </project>";
}

void FCPXMLDocument::generateClips(const std::vector<StorySegment>& segments) {
    double offset = 0.0;
    for (const auto& segment : segments) {
        generateClip(segment, offset);
        offset += segment.endTime - segment.startTime;
    }
}

void FCPXMLDocument::generateClip(const StorySegment& segment, double timelineOffset) {
    const auto source = resolveSourceTime(segment.startTime, m_offsetMap, SourceOrigin::firstSample);
    const auto* const media = mediaOf(segment, source);
    if (media == nullptr)
        return;
    const auto reference = m_index.named(media->filename).value_or(0) + firstAssetNumber;
    const double start = source ? source->seconds : startSeconds(*media) + segment.startTime;
    append("\n            <asset-clip ref=\"r{}\" offset=\"{}\" name=\"{}\" start=\"{}\" duration=\"{}\""
           " tcFormat=\"NDF\"",
           reference, FCPXMLTime::offset(timelineOffset, m_fps),
           xmlEscaped(firstCharacters(segment.transcript, clipNameCharacters)), rational(start),
           rational(segment.endTime - segment.startTime));
    if (media->hasAudio)
        m_text += " audioRole=\"dialogue\"";
    m_text += "/>";
}

/// The media that the segment names, else the one that it lies in by its time, else the first; null without any media.
const MediaFileInfo* FCPXMLDocument::mediaOf(const StorySegment& segment, const std::optional<SourceTime>& source) {
    if (m_mediaFiles.empty())
        return nullptr;
    auto position = mediaByClipName(segment.sourceClip);
    if (!position && source)
        position = m_index.named(source->filename);
    return &m_mediaFiles[position.value_or(0)];
}

std::optional<std::size_t> FCPXMLDocument::mediaByClipName(const std::string& clip) {
    const auto [entry, isNew] = m_foundByClipName.try_emplace(clip);
    if (isNew)
        entry->second = m_index.namedAlikeOrContaining(clip);
    return entry->second;
}

void FCPXMLDocument::generateCaptions(const std::vector<Subtitle>& subtitles) {
    m_text += "\n            <caption-lane>";
    for (const auto& subtitle : subtitles)
        append("\n          <caption startOffset=\"{}\" duration=\"{}\" role=\"closedCaption\">"
               "\n            <text>{}</text>"
               "\n          </caption>",
               rational(subtitle.startTime), rational(subtitle.endTime - subtitle.startTime),
               xmlEscaped(subtitle.text));
    m_text += "\n            </caption-lane>";
}

void FCPXMLDocument::generateChapterMarkers(const std::vector<StorySegment>& segments) {
    double offset = 0.0;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        generateChapterMarker(segments[i].chapter.value_or(fmt::format("Chapter {}", i + 1)), offset);
        offset += segments[i].endTime - segments[i].startTime;
    }
}

void FCPXMLDocument::generateChapterMarker(const std::string& title, double offset) {
    append("\n            <chapter-marker start=\"{}\" duration=\"{}\" value=\"{}\"/>", rational(offset),
           FCPXMLTime::frameDuration(m_fps), xmlEscaped(title));
}

} // namespace

} // namespace exporters

std::string FCPXMLExporter::exportText(const std::string& projectName, const std::vector<StorySegment>& segments,
                                       const std::vector<MediaFileInfo>& mediaFiles, double fps,
                                       const std::optional<std::vector<Subtitle>>& subtitles) {
    return exporters::FCPXMLDocument(mediaFiles, fps).build(projectName, segments, subtitles);
}

std::error_code FCPXMLExporter::exportToFile(const std::string& path, const std::string& projectName,
                                             const std::vector<StorySegment>& segments,
                                             const std::vector<MediaFileInfo>& mediaFiles, double fps,
                                             const std::optional<std::vector<Subtitle>>& subtitles) {
    return fileReplacementError(path, exportText(projectName, segments, mediaFiles, fps, subtitles), Readers::asUsual);
}

} // namespace zuvo
