#include "ui/InstallViewModel.h"

#include "platform/TopLevelTask.h"

namespace zuvo {

namespace {

using Operation = QCoro::Task<> (PluginManager::*)();

QCoro::Task<> carriedOut(std::shared_ptr<PluginManager> manager, Operation operation) {
    co_await (manager.get()->*operation)();
}

} // namespace

InstallViewModel::InstallViewModel(std::shared_ptr<PluginManager> manager, QObject* parent)
    : QObject(parent), m_manager(std::move(manager)) {
    auto* source = m_manager.get();
    connect(source, &PluginManager::isInstalledChanged, this, &InstallViewModel::changed);
    connect(source, &PluginManager::installedVersionChanged, this, &InstallViewModel::changed);
    connect(source, &PluginManager::isLoadingChanged, this, &InstallViewModel::changed);
    connect(source, &PluginManager::errorMessageChanged, this, &InstallViewModel::changed);
}

QString InstallViewModel::statusText() const {
    return isInstalled() ? QStringLiteral("Installed") : QStringLiteral("Not Installed");
}

QString InstallViewModel::versionText() const {
    const auto& version = m_manager->installedVersion();
    return isInstalled() && version ? QStringLiteral("Version ") + QString::fromStdString(*version) : QString();
}

QString InstallViewModel::installText() const {
    return isBusy() ? QStringLiteral("Installing...") : QStringLiteral("Install Plugin");
}

QString InstallViewModel::reinstallText() const {
    return isBusy() ? QStringLiteral("Working...") : QStringLiteral("Reinstall Plugin");
}

QString InstallViewModel::minimumResolve() {
    return QString::fromUtf8(Constants::App::minResolveVersion);
}

QString InstallViewModel::errorMessage() const {
    return QString::fromStdString(m_manager->errorMessage().value_or(std::string()));
}

void InstallViewModel::install() {
    startTopLevelTask(this, "that installs the plugin",
                      [manager = m_manager] { return carriedOut(manager, &PluginManager::install); });
}

void InstallViewModel::reinstall() {
    startTopLevelTask(this, "that reinstalls the plugin",
                      [manager = m_manager] { return carriedOut(manager, &PluginManager::reinstall); });
}

void InstallViewModel::setConfirmsUninstall(bool confirms) {
    if (m_confirmsUninstall == confirms)
        return;
    m_confirmsUninstall = confirms;
    Q_EMIT confirmsUninstallChanged();
}

void InstallViewModel::askToUninstall() {
    setConfirmsUninstall(true);
}

void InstallViewModel::cancelUninstall() {
    setConfirmsUninstall(false);
}

void InstallViewModel::uninstall() {
    setConfirmsUninstall(false);
    startTopLevelTask(this, "that removes the plugin",
                      [manager = m_manager] { return carriedOut(manager, &PluginManager::uninstall); });
}

} // namespace zuvo
