// What every source file is, asked before any audio is touched.

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "model/FileLimits.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"

namespace zuvo {

namespace {

/// Probing moves `progress` from the first to the sum of both.
constexpr double probingStart = 0.02;
constexpr double probingSpan = 0.03;

constexpr const char* probeCacheName = "probe_results.json";

} // namespace

QCoro::Task<> LocalPipeline::probeAllMedia(std::vector<std::string> paths) {
    const auto self = shared_from_this();
    m_probeResults.clear();
    Q_EMIT probeResultsChanged();
    log("📋 Probing " + std::to_string(paths.size()) + " source file" + std::string(pluralS(paths.size())) + "...");
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (m_cancelled)
            co_return;
        setProgress(probingStart + probingSpan * (static_cast<double>(i) / static_cast<double>(paths.size())));
        const auto result = co_await probeMediaFile(paths[i]);
        if (result) {
            m_probeResults[result->filename] = *result;
            Q_EMIT probeResultsChanged();
            log(probeLogLine(*result), LogColor::dim);
        } else {
            log("  ⚠ Failed to probe " + lastPathComponent(paths[i]), LogColor::accent);
        }
    }
    if (m_probeResults.empty())
        co_return;
    const auto count = m_probeResults.size();
    log("✓ Probed " + std::to_string(count) + " file" + std::string(pluralS(count)), LogColor::green);
    saveProbeCache();
}

QCoro::Task<std::optional<ProbeResult>> LocalPipeline::probeMediaFile(std::string path) {
    std::vector<std::string> args = {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", path};
    const auto output = co_await runProcessOutput(m_platform.environment.tools.ffprobe, std::move(args));
    co_return probeResultFrom(path, output);
}

void LocalPipeline::saveProbeCache() {
    makeCacheFolder();
    writePromised(cacheFile(probeCacheName), probeCacheText(m_probeResults));
}

std::optional<Json> LocalPipeline::readProbeCache() const {
    const auto text = readFile(cacheFile(probeCacheName), FileLimits::probeCache);
    if (!text)
        return std::nullopt;
    return parseForeignJson(*text);
}

} // namespace zuvo
