#include "exporters/MediaList.h"

#include "base/Paths.h"
#include "base/Text.h"

#include <set>
#include <string_view>

namespace zuvo {

namespace {

/// The length of a file of which nothing is known (seconds).
constexpr double assumedDuration = 3600.0;
/// The rate of a file that tells none.
constexpr double assumedFps = 24.0;

bool looksLikeVideo(const std::string& filename) {
    const auto name = asciiLowered(filename);
    return name.ends_with(".mov") || name.ends_with(".mp4");
}

MediaFileInfo probedMedia(const std::string& path, std::string filename, const ProbeResult& probe) {
    return {path,           std::move(filename), probe.duration, probe.startTimecode, probe.fps.value_or(assumedFps),
            probe.hasVideo, probe.hasAudio,      probe.codec};
}

MediaFileInfo unprobedMedia(const std::string& path, std::string filename) {
    const bool hasVideo = looksLikeVideo(filename);
    return {path, std::move(filename), assumedDuration, std::nullopt, assumedFps, hasVideo, true, std::nullopt};
}

} // namespace

std::vector<MediaFileInfo> generateMediaFileInfo(const std::optional<std::vector<std::string>>& mediaPaths,
                                                 const std::map<std::string, ProbeResult>& probeResults,
                                                 const std::vector<StorySegment>& segments) {
    if (!mediaPaths || mediaPaths->empty())
        return createDummyMediaInfo(segments);
    std::vector<MediaFileInfo> list;
    list.reserve(mediaPaths->size());
    for (const auto& path : *mediaPaths) {
        auto filename = lastPathComponent(path);
        const auto probe = probeResults.find(filename);
        list.push_back(probe != probeResults.end() ? probedMedia(path, std::move(filename), probe->second)
                                                   : unprobedMedia(path, std::move(filename)));
    }
    return list;
}

std::vector<MediaFileInfo> createDummyMediaInfo(const std::vector<StorySegment>& segments) {
    std::vector<MediaFileInfo> list;
    std::set<std::string_view> known;
    for (const auto& segment : segments) {
        if (!known.insert(segment.sourceClip).second)
            continue;
        MediaFileInfo media;
        media.path = "/path/to/" + segment.sourceClip;
        media.filename = segment.sourceClip;
        media.duration = assumedDuration;
        media.fps = assumedFps;
        list.push_back(std::move(media));
    }
    return list;
}

} // namespace zuvo
