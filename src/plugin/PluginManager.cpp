#include "plugin/PluginManager.h"

#include "base/Files.h"
#include "model/FileLimits.h"
#include "model/PluginVersion.h"
#include "platform/FileSystem.h"
#include "plugin/AdministratorScripts.h"
#include "plugin/PluginError.h"
#include "plugin/TaskFailure.h"

#include <QPointer>
#include <filesystem>
#include <utility>
#include <vector>

namespace zuvo {

namespace {

std::string versionIn(const std::string& pluginPath) {
    const auto path = pluginPath + "/version.json";
    std::error_code error;
    // A pipe in its place would be waited for.
    const bool isFile = std::filesystem::is_regular_file(path, error);
    const auto text = isFile ? readTextFile(path, FileLimits::pluginVersion) : std::nullopt;
    const auto decoded = text ? decodeRecordText<PluginVersionFile>(*text) : Decoded<PluginVersionFile>();
    return decoded.value ? decoded.value->version : "Unknown";
}

/// `paths` are those that stand in the source. Throws `installFailed`.
QCoro::Task<> runAppleScript(std::shared_ptr<AdministratorShell> administrator, std::string source,
                             std::vector<std::string> paths) {
    for (const auto& path : paths) {
        if (const auto refusal = pathRefusal(path))
            throw PluginError::installFailed(*refusal);
    }
    const auto outcome = co_await administrator->run(std::move(source));
    if (outcome.ending == AdministratorOutcome::Ending::couldNotCreate)
        throw PluginError::installFailed("Could not create AppleScript");
    if (!outcome.hasSucceeded())
        throw PluginError::installFailed(outcome.failure.empty() ? "AppleScript error" : outcome.failure);
}

QCoro::Task<> failing(PluginError error) {
    throw std::move(error);
    co_return;
}

} // namespace

PluginManager::PluginManager(std::shared_ptr<AdministratorShell> administrator,
                             std::optional<std::string> resourceFolder, std::string pluginPath)
    : m_administrator(std::move(administrator)),
      m_resourceFolder(std::move(resourceFolder)),
      m_pluginPath(std::move(pluginPath)) {
    detectInstallation();
}

void PluginManager::detectInstallation() {
    if (fileExists(m_pluginPath))
        setInstalled(true, versionIn(m_pluginPath));
    else
        setInstalled(false, std::nullopt);
}

QCoro::Task<> PluginManager::install() {
    return carryOut("Installing plugin...", &PluginManager::performInstall, "Plugin installed successfully!");
}

QCoro::Task<> PluginManager::uninstall() {
    return carryOut("Uninstalling plugin...", &PluginManager::performUninstall, "Plugin uninstalled.");
}

QCoro::Task<> PluginManager::carryOut(const char* startStatus, Operation operation, const char* endStatus) {
    if (m_isLoading)
        co_return;
    const QPointer<PluginManager> self(this);
    begin(startStatus);
    auto failure = co_await failureOf((this->*operation)());
    if (self.isNull())
        co_return;
    if (failure)
        fail(std::move(*failure));
    else
        succeed(endStatus);
}

QCoro::Task<> PluginManager::reinstall() {
    if (m_isLoading)
        co_return;
    const QPointer<PluginManager> self(this);
    co_await uninstall();
    if (self.isNull() || m_errorMessage)
        co_return;
    co_await install();
}

QCoro::Task<> PluginManager::performInstall() const {
    if (!m_resourceFolder)
        return failing(PluginError::bundleResourcesMissing());
    const auto source = *m_resourceFolder + "/plugin";
    if (fileExists(source))
        return copyWithAdminPrivileges(source, m_pluginPath);
    return createMinimalPlugin();
}

QCoro::Task<> PluginManager::createMinimalPlugin() const {
    return runAppleScript(m_administrator, minimalPluginScript(m_pluginPath, Constants::App::pluginVersion),
                          {m_pluginPath});
}

QCoro::Task<> PluginManager::performUninstall() const {
    return runAppleScript(m_administrator, removalScript(m_pluginPath), {m_pluginPath});
}

QCoro::Task<> PluginManager::copyWithAdminPrivileges(const std::string& from, const std::string& to) const {
    return runAppleScript(m_administrator, copyScript(from, to), {from, to});
}

void PluginManager::begin(const char* status) {
    setLoading(true);
    setStatusMessage(status);
    setErrorMessage(std::nullopt);
}

void PluginManager::succeed(const char* status) {
    detectInstallation();
    setStatusMessage(status);
    setLoading(false);
}

void PluginManager::fail(std::string description) {
    setErrorMessage(std::move(description));
    setStatusMessage(std::nullopt);
    setLoading(false);
}

void PluginManager::setInstalled(bool installed, std::optional<std::string> version) {
    const bool wasInstalled = std::exchange(m_isInstalled, installed);
    const auto formerVersion = std::exchange(m_installedVersion, std::move(version));
    if (wasInstalled != m_isInstalled)
        Q_EMIT isInstalledChanged();
    if (formerVersion != m_installedVersion)
        Q_EMIT installedVersionChanged();
}

void PluginManager::setLoading(bool loading) {
    if (std::exchange(m_isLoading, loading) != loading)
        Q_EMIT isLoadingChanged();
}

void PluginManager::setStatusMessage(std::optional<std::string> message) {
    if (message == m_statusMessage)
        return;
    m_statusMessage = std::move(message);
    Q_EMIT statusMessageChanged();
}

void PluginManager::setErrorMessage(std::optional<std::string> message) {
    if (message == m_errorMessage)
        return;
    m_errorMessage = std::move(message);
    Q_EMIT errorMessageChanged();
}

} // namespace zuvo
