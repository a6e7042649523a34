#include "plugin/UpdateManager.h"

#include "model/PluginVersion.h"
#include "platform/FileSystem.h"
#include "plugin/AdministratorScripts.h"
#include "plugin/ArchiveLinks.h"
#include "plugin/TaskFailure.h"
#include "plugin/UpdateError.h"

#include <QPointer>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace zuvo {

namespace fs = std::filesystem;

namespace {

constexpr double downloaded = 0.5;
constexpr double unpacked = 0.8;
constexpr double installed = 1.0;

/// Where an update lies while it is installed.
struct WorkFolder {
    std::string path;

    [[nodiscard]] std::string partialArchive() const { return path + "/plugin-update.download"; }
    [[nodiscard]] std::string archive() const { return path + "/plugin-update.zip"; }
    [[nodiscard]] std::string extracted() const { return path + "/extracted"; }
};

// The steps of an installation fail by throwing an exception with the words for the user. Those that wait take all they
// need as arguments, so that they outlive the manager.

void makeFolder(const std::string& path) {
    std::error_code error;
    fs::create_directories(path, error);
    if (!error && !fs::is_directory(path, error) && !error)
        error = std::make_error_code(std::errc::not_a_directory);
    if (error)
        throw std::runtime_error("The folder " + path + " cannot be made: " + error.message());
}

/// An empty folder, made anew.
WorkFolder makeWorkFolder(const UpdateMeans& means) {
    const auto temporaryFolder = means.temporaryFolder();
    if (!temporaryFolder)
        throw std::runtime_error("The folder for temporary files cannot be made, or is another user's");
    WorkFolder work{*temporaryFolder + "zuvo-update"};
    removeTree(work.path);
    makeFolder(work.path);
    return work;
}

QCoro::Task<> download(std::shared_ptr<Downloader> downloader, std::string url, WorkFolder work) {
    const auto outcome = co_await downloader->fetch(std::move(url), work.partialArchive());
    if (outcome.hasFailed())
        throw std::runtime_error(outcome.failure);
    std::error_code error;
    fs::rename(work.partialArchive(), work.archive(), error);
    if (error)
        throw std::runtime_error("The download cannot be kept: " + error.message());
}

ProcessRequest unzipRequest(std::string unzip, const WorkFolder& work) {
    ProcessRequest request;
    request.program = std::move(unzip);
    request.arguments = {"-o", work.archive(), "-d", work.extracted()};
    request.hasNoTerminal = true; // where unzip would ask for an archive's password
    return request;
}

QCoro::Task<> unpack(std::shared_ptr<ProcessRunner> processes, std::string unzip, WorkFolder work) {
    makeFolder(work.extracted());
    auto request = unzipRequest(std::move(unzip), work);
    const auto ended = co_await processes->run(std::move(request));
    // What could not be unpacked is missing then, which its installation finds.
    if (!ended.launched)
        throw std::runtime_error(ended.launchFailure);
}

/// Why an administrator must not copy from `extracted`; nothing if that is safe.
std::optional<std::string> installationRefusal(const std::string& pluginDirectory, const std::string& extracted) {
    auto refusal = pathRefusal(pluginDirectory);
    if (!refusal)
        refusal = pathRefusal(extracted);
    if (!refusal)
        refusal = archiveRefusal(extracted);
    return refusal;
}

QCoro::Task<> replacePlugin(std::shared_ptr<AdministratorShell> administrator, std::string pluginDirectory,
                            WorkFolder work) {
    if (const auto refusal = installationRefusal(pluginDirectory, work.extracted()))
        throw UpdateError::installFailed(*refusal);
    auto source = replacementScript(pluginDirectory, work.extracted());
    const auto outcome = co_await administrator->run(std::move(source));
    if (outcome.ending == AdministratorOutcome::Ending::couldNotCreate)
        throw UpdateError::installFailed("Could not run installer");
    if (!outcome.hasSucceeded())
        throw UpdateError::installFailed(outcome.failure.empty() ? "Install error" : outcome.failure);
}

struct VersionAnswer {
    std::optional<VersionInfo> info;
    std::string failure;
};

QCoro::Task<VersionAnswer> askForVersion(APIClient service) {
    VersionAnswer answer;
    try {
        answer.info = co_await service.getVersion();
    } catch (const std::exception& error) {
        answer.failure = error.what();
    }
    co_return answer;
}

} // namespace

UpdateManager::UpdateManager(UpdateMeans means) : m_means(std::move(means)) {}

QCoro::Task<> UpdateManager::checkForUpdates() {
    if (m_isChecking)
        co_return;
    const QPointer<UpdateManager> self(this);
    setChecking(true);
    setStatusMessage("Checking for updates...");
    setErrorMessage(std::nullopt);
    auto answer = co_await askForVersion(m_means.service);
    if (self.isNull())
        co_return;
    if (answer.info) {
        take(*answer.info);
    } else {
        setErrorMessage(std::move(answer.failure));
        setStatusMessage(std::nullopt);
    }
    setChecking(false);
}

void UpdateManager::take(const VersionInfo& info) {
    m_downloadURL = info.downloadURL;
    set(m_latestVersion, std::optional(info.version), &UpdateManager::latestVersionChanged);
    set(m_releaseNotes, info.releaseNotes, &UpdateManager::releaseNotesChanged);
    set(m_updateAvailable, isNewerVersion(info.version, Constants::App::pluginVersion),
        &UpdateManager::updateAvailableChanged);
    setStatusMessage(m_updateAvailable ? std::optional<std::string>("Update available!") : std::nullopt);
}

QCoro::Task<> UpdateManager::downloadAndInstall() {
    if (m_isDownloading)
        co_return;
    if (!m_downloadURL || !isDownloadAddress(*m_downloadURL)) {
        setErrorMessage("No download URL available");
        co_return;
    }
    const QPointer<UpdateManager> self(this);
    beginInstallation();
    auto installation = installFrom(*m_downloadURL, m_means, self);
    auto failure = co_await failureOf(std::move(installation));
    if (self.isNull())
        co_return;
    if (failure) {
        setErrorMessage(std::move(failure));
        setStatusMessage(std::nullopt);
    }
    setDownloading(false);
}

QCoro::Task<> UpdateManager::installFrom(std::string url, UpdateMeans means, QPointer<UpdateManager> self) {
    const auto work = makeWorkFolder(means);
    co_await download(means.downloader, std::move(url), work);
    if (self.isNull())
        co_return;
    self->setProgress(downloaded);
    self->setStatusMessage("Installing update...");
    co_await unpack(means.processes, means.unzip, work);
    if (self.isNull())
        co_return;
    self->setProgress(unpacked);
    co_await replacePlugin(means.administrator, means.pluginDirectory, work);
    if (!self.isNull())
        self->endInstallation();
    removeTree(work.path);
}

void UpdateManager::beginInstallation() {
    setDownloading(true);
    setProgress(0.0);
    setStatusMessage("Downloading update...");
    setErrorMessage(std::nullopt);
}

void UpdateManager::endInstallation() {
    setProgress(installed);
    set(m_updateAvailable, false, &UpdateManager::updateAvailableChanged);
    setStatusMessage("Update installed! Restart DaVinci Resolve to apply changes.");
}

template <class Value>
void UpdateManager::set(Value& field, Value value, void (UpdateManager::*changed)()) {
    if (field == value)
        return;
    field = std::move(value);
    Q_EMIT(this->*changed)();
}

void UpdateManager::setChecking(bool checking) {
    set(m_isChecking, checking, &UpdateManager::isCheckingChanged);
}

void UpdateManager::setDownloading(bool downloading) {
    set(m_isDownloading, downloading, &UpdateManager::isDownloadingChanged);
}

void UpdateManager::setProgress(double progress) {
    set(m_downloadProgress, progress, &UpdateManager::downloadProgressChanged);
}

void UpdateManager::setStatusMessage(std::optional<std::string> message) {
    set(m_statusMessage, std::move(message), &UpdateManager::statusMessageChanged);
}

void UpdateManager::setErrorMessage(std::optional<std::string> message) {
    set(m_errorMessage, std::move(message), &UpdateManager::errorMessageChanged);
}

} // namespace zuvo
