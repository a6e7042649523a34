#include "pipeline/LocalPipeline.h"

#include "base/Files.h"
#include "platform/FileSystem.h"

#include <QTime>

namespace zuvo {

std::shared_ptr<LocalPipeline> LocalPipeline::create(Platform platform, ServiceTimeouts timeouts) {
    // deleteLater, since the last holder may be a run that ends inside one of the pipeline's own signals.
    return {new LocalPipeline(std::move(platform), timeouts), [](LocalPipeline* pipeline) { pipeline->deleteLater(); }};
}

LocalPipeline::LocalPipeline(Platform platform, ServiceTimeouts timeouts)
    : m_platform(std::move(platform)), m_timeouts(timeouts), m_startTime(m_platform.clock()) {}

void LocalPipeline::log(std::string text, const char* color) {
    const auto time = m_platform.clock().toLocalTime().time();
    m_logs.push_back(PipelineLog::make(std::move(text), color, {time.minute(), time.second()}, m_platform.newUuid()));
    Q_EMIT logAdded();
}

void LocalPipeline::fail(std::string message) {
    setStep(PipelineStep::error);
    m_errorMessage = message;
    Q_EMIT errorMessageChanged();
    log("✗ " + message, LogColor::accent);
}

void LocalPipeline::beginRun() {
    m_cancelled = false;
    m_promisedFiles.clear();
    m_startTime = m_platform.clock();
}

void LocalPipeline::reset() {
    setStep(PipelineStep::idle);
    setProgress(0.0);
    m_logs.clear();
    Q_EMIT logsCleared();
    setResults(std::nullopt);
    m_errorMessage.reset();
    Q_EMIT errorMessageChanged();
    setLastExportDir(std::nullopt);
    m_promisedFiles.clear();
    m_cancelled = false;
}

void LocalPipeline::writePromised(std::string path, std::optional<std::string> text, Readers readers) {
    PromisedFile promised{std::move(path), std::move(text), std::nullopt, false, readers};
    promised.before = fileStamp(promised.path);
    if (promised.text)
        (void)replaceFileAtomically(promised.path, *promised.text, promised.readers);
    std::erase_if(m_promisedFiles, [&promised](const PromisedFile& one) { return one.path == promised.path; });
    m_promisedFiles.push_back(std::move(promised));
}

void LocalPipeline::setStep(PipelineStep step) {
    if (m_step == step)
        return;
    m_step = step;
    Q_EMIT stepChanged();
}

void LocalPipeline::setProgress(double progress) {
    if (m_progress == progress)
        return;
    m_progress = progress;
    Q_EMIT progressChanged();
}

void LocalPipeline::setResults(std::optional<MiningResults> results) {
    m_results = std::move(results);
    Q_EMIT resultsChanged();
}

void LocalPipeline::setLastMediaPaths(std::optional<std::vector<std::string>> paths) {
    m_lastMediaPaths = std::move(paths);
    Q_EMIT lastMediaPathsChanged();
}

void LocalPipeline::setLastExportDir(std::optional<std::string> folder) {
    m_lastExportDir = std::move(folder);
    Q_EMIT lastExportDirChanged();
}

void LocalPipeline::setBuildResult(std::optional<std::string> result) {
    m_buildResult = std::move(result);
    Q_EMIT buildResultChanged();
}

void LocalPipeline::setAuditReport(std::optional<AuditReport> report) {
    m_auditReport = std::move(report);
    Q_EMIT auditReportChanged();
}

std::string LocalPipeline::cacheFile(const char* name) const {
    return m_platform.environment.cacheFolder() + "/" + name;
}

void LocalPipeline::makeCacheFolder(const char* name) const {
    (void)makePrivateFolder(m_platform.environment.cacheFolder(), cacheFile(name));
}

void LocalPipeline::makeProjectFolder(const std::string& folder) const {
    const auto data = m_platform.environment.dataFolder();
    // One that is there may be shared by the user's own choice.
    if (!fileExists(data))
        (void)makePrivateFolder(data, data);
    createFolders(folder);
}

} // namespace zuvo
