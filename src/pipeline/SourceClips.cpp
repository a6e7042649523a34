// Which source file each moment lies in, and the hand-off of the moments to the timeline build.

#include "base/Paths.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"
#include "steps/ClipMap.h"

#include <algorithm>

namespace zuvo {

QCoro::Task<MiningResults> LocalPipeline::assignSourceClips(MiningResults analysis,
                                                            std::vector<std::string> mediaPaths) {
    const auto self = shared_from_this();
    auto map = clipMapFromProbeCache(readProbeCache().value_or(Json::object()), mediaPaths);
    if (map.empty()) {
        std::sort(mediaPaths.begin(), mediaPaths.end());
        std::vector<std::pair<std::string, double>> measured;
        for (const auto& path : mediaPaths) {
            const auto seconds = co_await measuredDuration(path);
            if (seconds)
                measured.emplace_back(lastPathComponent(path), *seconds);
        }
        map = clipMapFromDurations(measured);
    }
    if (map.empty())
        co_return analysis;
    log(clipMapLogLine(map));
    co_return withSourceClips(std::move(analysis), map);
}

void LocalPipeline::writeSegmentsJson(const MiningResults& analysis) {
    const bool serialised = segmentsFileText(analysis.segments).has_value();
    writeSegmentsJsonPublic(analysis.segments);
    if (serialised)
        log("  Wrote " + std::to_string(analysis.segments.size()) + " segments to cache", LogColor::dim);
}

void LocalPipeline::writeSegmentsJsonPublic(const std::vector<StorySegment>& segments) {
    // A project told anew may be the first thing to need the folder.
    makeCacheFolder();
    writePromised(cacheFile("segments.json"), segmentsFileText(segments));
}

} // namespace zuvo
