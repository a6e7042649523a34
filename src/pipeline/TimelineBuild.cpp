// The story as a timeline in Resolve. There is no link to Resolve in this version: both builds end as they do on a
// machine where nothing answers.

#include "base/Files.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"

namespace zuvo {

QCoro::Task<> LocalPipeline::buildTimelineFromSegmentsFile() {
    const auto self = shared_from_this();
    setBuildResult(std::nullopt);
    (void)replaceFileAtomically(cacheFile("build_debug.txt"),
                                "buildTimelineFromSegmentsFile called at " + defaultDateText(m_platform.clock()));
    if (!fileExists(cacheFile("segments.json"))) {
        log("✗ No segments file found", LogColor::accent);
        setBuildResult("✗ No segments file found");
        co_return;
    }
    log("Building timeline in Resolve...");
    log("✗ Python returned no output", LogColor::accent);
    setBuildResult("✗ Python returned no output — check Resolve connection");
}

QCoro::Task<bool> LocalPipeline::buildResolveTimeline(std::string /*name*/, MiningResults /*analysis*/,
                                                      std::vector<std::string> /*mediaPaths*/) {
    log("  Python script failed to execute", LogColor::accent);
    co_return false;
}

} // namespace zuvo
