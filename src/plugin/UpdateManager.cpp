#include "plugin/UpdateManager.h"

#include "base/Paths.h"
#include "model/PluginVersion.h"
#include "plugin/AdministratorScripts.h"
#include "plugin/TaskFailure.h"
#include "plugin/UnpackedUpdate.h"
#include "plugin/UpdateArchive.h"
#include "plugin/UpdateError.h"
#include "plugin/WorkFolder.h"

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

// The steps of an installation fail by throwing an exception with the words for the user. Those that wait take all they
// need as arguments, so that they outlive the manager.

[[noreturn]] void refuse(const std::string& words) {
    throw UpdateError::installFailed(words);
}

std::shared_ptr<const WorkFolder> makeWorkFolder(const UpdateMeans& means) {
    const auto temporaryFolder = means.temporaryFolder();
    if (!temporaryFolder)
        throw std::runtime_error("The folder for temporary files cannot be made, or is another user's");
    return std::make_shared<const WorkFolder>(*temporaryFolder);
}

QCoro::Task<> download(std::shared_ptr<Downloader> downloader, std::string url,
                       std::shared_ptr<const WorkFolder> work) {
    const auto outcome = co_await downloader->fetch(std::move(url), work->partialArchive());
    if (outcome.hasFailed())
        throw std::runtime_error(outcome.failure);
    std::error_code error;
    fs::rename(work->partialArchive(), work->archive(), error);
    if (error)
        throw std::runtime_error("The download cannot be kept: " + error.message());
}

/// Fetches the signature of what `download` fetched, unless there is no key to check it by.
QCoro::Task<> checkSignature(std::shared_ptr<Downloader> downloader, std::string url, std::string updateKey,
                             std::shared_ptr<const WorkFolder> work) {
    if (updateKey.empty())
        co_return;
    const auto outcome = co_await downloader->fetch(url + ".sig", work->signature());
    if (outcome.hasFailed())
        refuse("The update's signature cannot be fetched: " + outcome.failure);
    if (!UpdateSignature(updateKey).isValid(work->archive(), work->signature()))
        refuse("The update is not signed by its publisher");
}

/// The files in the archive, by `inspectUpdate`.
std::map<std::string, std::uint64_t> inspect(const std::string& archive, const std::string& pluginDirectory) {
    auto inspection = inspectUpdate(archive, lastPathComponent(pluginDirectory));
    if (inspection.isRefused())
        refuse(inspection.refusal);
    return std::move(inspection.files);
}

QCoro::Task<> unpack(std::shared_ptr<ProcessRunner> processes, std::string unzip,
                     std::shared_ptr<const WorkFolder> work) {
    std::error_code error;
    fs::create_directory(work->extracted(), error);
    if (error)
        throw std::runtime_error("The folder " + work->extracted() + " cannot be made: " + error.message());
    ProcessRequest request;
    request.program = std::move(unzip);
    request.arguments = {"-o", work->archive(), "-d", work->extracted()};
    request.hasNoTerminal = true; // where unzip would ask for an archive's password
    const auto ended = co_await processes->run(std::move(request));
    // What could not be unpacked is missing then, which `replacementFor` finds.
    if (!ended.launched)
        throw std::runtime_error(ended.launchFailure);
}

/// The script that installs what was unpacked, exactly as it is now.
std::string replacementFor(const std::string& pluginDirectory, const std::string& extracted,
                           const std::map<std::string, std::uint64_t>& files) {
    for (const auto& path : {pluginDirectory, extracted}) {
        if (const auto refusal = pathRefusal(path))
            refuse(*refusal);
    }
    if (const auto refusal = unpackedRefusal(extracted, files))
        refuse(*refusal);
    const auto manifest = manifestOf(extracted, lastPathComponent(pluginDirectory));
    if (!manifest)
        refuse("The update cannot be looked through");
    return checkedReplacementScript(pluginDirectory, extracted, sha256Of(*manifest));
}

QCoro::Task<> replacePlugin(std::shared_ptr<AdministratorShell> administrator, std::string source) {
    const auto outcome = co_await administrator->run(std::move(source));
    if (outcome.ending == AdministratorOutcome::Ending::couldNotCreate)
        refuse("Could not run installer");
    if (!outcome.hasSucceeded())
        refuse(outcome.failure.empty() ? "Install error" : outcome.failure);
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
    // Removed when the installation ends, in whatever way.
    const auto work = makeWorkFolder(means);
    co_await download(means.downloader, url, work);
    co_await checkSignature(means.downloader, std::move(url), means.updateKey, work);
    if (self.isNull())
        co_return;
    self->setProgress(downloaded);
    self->setStatusMessage("Installing update...");
    const auto files = inspect(work->archive(), means.pluginDirectory);
    co_await unpack(means.processes, means.unzip, work);
    if (self.isNull())
        co_return;
    self->setProgress(unpacked);
    auto source = replacementFor(means.pluginDirectory, work->extracted(), files);
    co_await replacePlugin(means.administrator, std::move(source));
    if (!self.isNull())
        self->endInstallation();
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
