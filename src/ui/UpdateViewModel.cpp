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

UpdateViewModel::UpdateViewModel(std::shared_ptr<UpdateManager> manager, QObject* parent)
    : QObject(parent), m_manager(std::move(manager)) {
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

void UpdateViewModel::check() {
    startTopLevelTask(this, "that checks for updates", [manager = m_manager] { return checked(manager); });
}

void UpdateViewModel::install() {
    startTopLevelTask(this, "that installs an update", [manager = m_manager] { return installed(manager); });
}

} // namespace zuvo
