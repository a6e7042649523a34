#pragma once

#include "model/Constants.h"
#include "platform/AdministratorShell.h"

#include <QCoroTask>
#include <QObject>
#include <memory>
#include <optional>
#include <string>

namespace zuvo {

/// Installs, finds and removes this application's plugin of DaVinci Resolve. The plugin's folder belongs to the
/// machine, so each change asks for an administrator's password.
///
/// Lives on the thread that made it. One operation runs at a time: another that is asked for meanwhile ends at once and
/// does nothing. Operations fail to nobody, a failure is the `errorMessage`. An operation that still waits when the
/// manager is destroyed ends without touching it.
class PluginManager : public QObject {
    Q_OBJECT
public:
    /// `resourceFolder` holds what ships with the application, the folder "plugin" among it. Looks for an installed
    /// plugin at once.
    PluginManager(std::shared_ptr<AdministratorShell> administrator, std::optional<std::string> resourceFolder,
                  std::string pluginPath = Constants::Paths::pluginDirectory);

    [[nodiscard]] const std::string& pluginPath() const { return m_pluginPath; }

    /// Whether there is something at `pluginPath`, and the version it names: "Unknown" if it names none. As found by
    /// the last `detectInstallation`.
    [[nodiscard]] bool isInstalled() const { return m_isInstalled; }
    [[nodiscard]] const std::optional<std::string>& installedVersion() const { return m_installedVersion; }

    [[nodiscard]] bool isLoading() const { return m_isLoading; } ///< an operation runs
    /// What is being done, or was done last.
    [[nodiscard]] const std::optional<std::string>& statusMessage() const { return m_statusMessage; }
    [[nodiscard]] const std::optional<std::string>& errorMessage() const { return m_errorMessage; } ///< last failure

    /// Looks again what lies at `pluginPath`.
    void detectInstallation();

    /// Copies the plugin that ships to `pluginPath`, or a minimal one where the program has only its folder.
    QCoro::Task<> install();
    /// Removes what lies at `pluginPath`.
    QCoro::Task<> uninstall();

    /// Installs only if nothing stood in the way of the removal.
    QCoro::Task<> reinstall();

Q_SIGNALS:
    void isInstalledChanged();
    void installedVersionChanged();
    void isLoadingChanged();
    void statusMessageChanged();
    void errorMessageChanged();

private:
    // The operations throw PluginError through the task.
    using Operation = QCoro::Task<> (PluginManager::*)() const;
    [[nodiscard]] QCoro::Task<> performInstall() const;
    [[nodiscard]] QCoro::Task<> createMinimalPlugin() const;
    [[nodiscard]] QCoro::Task<> performUninstall() const;
    [[nodiscard]] QCoro::Task<> copyWithAdminPrivileges(const std::string& from, const std::string& to) const;

    /// Runs the operation, unless one runs, and tells its beginning and end.
    QCoro::Task<> carryOut(const char* startStatus, Operation operation, const char* endStatus);
    void begin(const char* status);
    void succeed(const char* status);
    void fail(std::string description);

    void setInstalled(bool installed, std::optional<std::string> version);
    void setLoading(bool loading);
    void setStatusMessage(std::optional<std::string> message);
    void setErrorMessage(std::optional<std::string> message);

    std::shared_ptr<AdministratorShell> m_administrator;
    std::optional<std::string> m_resourceFolder;
    std::string m_pluginPath;

    bool m_isInstalled = false;
    std::optional<std::string> m_installedVersion;
    bool m_isLoading = false;
    std::optional<std::string> m_statusMessage;
    std::optional<std::string> m_errorMessage;
};

} // namespace zuvo
