#include "ui/UpdateViewModel.h"

#include "platform/ForeignWords.h"
#include "platform/TopLevelTask.h"

namespace zuvo {

namespace {

QString shown(const std::optional<std::string>& text) {
    return QString::fromStdString(pageText(text.value_or(std::string())));
}

QCoro::Task<> checked(std::shared_ptr<UpdateManager> manager) {
    co_await manager->checkForUpdates();
}

QCoro::Task<> installed(std::shared_ptr<UpdateManager> manager) {
    co_await manager->downloadAndInstall();
}

} // namespace

UpdateViewModel::UpdateViewModel(std::shared_ptr<UpdateManager> manager, std::shared_ptr<PluginManager> plugin,
                                 QObject* parent)
    : QObject(parent), m_manager(std::move(manager)), m_pluginManager(std::move(plugin)), m_plugin(m_pluginManager) {
    m_pluginManager->detectInstallation();
    connect(&m_plugin, &InstallViewModel::changed, this, &UpdateViewModel::pluginChanged);
    // The managers know nothing of each other.
    connect(m_manager.get(), &UpdateManager::isDownloadingChanged, this,
            [this] { m_pluginManager->detectInstallation(); });
    auto* source = m_manager.get();
    connect(source, &UpdateManager::latestVersionChanged, this, &UpdateViewModel::changed);
    connect(source, &UpdateManager::updateAvailableChanged, this, &UpdateViewModel::changed);
    connect(source, &UpdateManager::releaseNotesChanged, this, &UpdateViewModel::changed);
    connect(source, &UpdateManager::isCheckingChanged, this, &UpdateViewModel::changed);
    connect(source, &UpdateManager::isDownloadingChanged, this, &UpdateViewModel::changed);
    connect(source, &UpdateManager::downloadProgressChanged, this, &UpdateViewModel::changed);
    connect(source, &UpdateManager::statusMessageChanged, this, &UpdateViewModel::changed);
    connect(source, &UpdateManager::errorMessageChanged, this, &UpdateViewModel::changed);
}

QString UpdateViewModel::checkText() const {
    return isChecking() ? QStringLiteral("Checking...") : QStringLiteral("Check for Updates");
}

QString UpdateViewModel::installedVersion() {
    return QString::fromUtf8(Constants::App::version);
}

QString UpdateViewModel::latestVersion() const {
    if (isChecking())
        return QStringLiteral("...");
    const auto& version = m_manager->latestVersion();
    return version ? shown(version) : QStringLiteral("—");
}

QString UpdateViewModel::updateLine() const {
    return QStringLiteral("Version ") + shown(m_manager->latestVersion()) + QStringLiteral(" is ready to install");
}

QString UpdateViewModel::installText() const {
    return isInstalling() ? QStringLiteral("Installing...") : QStringLiteral("Download & Install");
}

bool UpdateViewModel::isUpToDate() const {
    return !isChecking() && m_manager->latestVersion() && !updateAvailable() && !m_manager->errorMessage();
}

QString UpdateViewModel::installedNotice() const {
    constexpr double done = 1.0;
    // A later check has words of its own in the same place.
    const bool hasInstalled = !isInstalling() && !isChecking() && !updateAvailable() &&
                              m_manager->downloadProgress() >= done && !m_manager->errorMessage();
    return hasInstalled ? shown(m_manager->statusMessage()) : QString();
}

QString UpdateViewModel::releaseNotes() const {
    return shown(m_manager->releaseNotes());
}

QString UpdateViewModel::errorMessage() const {
    return shown(m_manager->errorMessage());
}

QString UpdateViewModel::unsignedNotice() const {
    return m_manager->areUpdatesSigned()
               ? QString()
               : QStringLiteral("Updates are not signed: this build has no key to check them with.");
}

QString UpdateViewModel::pluginText() const {
    if (!isPluginInstalled())
        return QStringLiteral("The Resolve plugin is not installed");
    return QStringLiteral("The Resolve plugin is installed: version ") + shown(m_pluginManager->installedVersion());
}

QString UpdateViewModel::pluginButtonText() const {
    return isPluginInstalled() ? QStringLiteral("Manage Plugin") : QStringLiteral("Install Plugin");
}

void UpdateViewModel::openPlugin() {
    setShowsPlugin(true);
}

void UpdateViewModel::closePlugin() {
    setShowsPlugin(false);
}

void UpdateViewModel::setShowsPlugin(bool shows) {
    if (m_showsPlugin == shows)
        return;
    m_showsPlugin = shows;
    Q_EMIT pluginChanged();
}

void UpdateViewModel::check() {
    startTopLevelTask(this, "that checks for updates", [manager = m_manager] { return checked(manager); });
}

void UpdateViewModel::install() {
    startTopLevelTask(this, "that installs an update", [manager = m_manager] { return installed(manager); });
}

} // namespace zuvo
