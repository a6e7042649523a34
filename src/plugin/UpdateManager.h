#pragma once

#include "account/APIClient.h"
#include "model/Constants.h"
#include "platform/AdministratorShell.h"
#include "platform/Download.h"
#include "platform/Processes.h"
#include "plugin/UpdateSignature.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zuvo {

/// What an update works through.
struct UpdateMeans {
    APIClient service;
    std::shared_ptr<Downloader> downloader;
    std::shared_ptr<ProcessRunner> processes;
    std::shared_ptr<AdministratorShell> administrator;

    /// `Environment::temporaryFolder`: this user's own. Each attempt makes a folder in it and removes it at its end.
    std::function<std::optional<std::string>()> temporaryFolder;

    std::string pluginDirectory = Constants::Paths::pluginDirectory;
    std::string unzip = "/usr/bin/unzip";

    /// The public key that updates must be signed for, in base64; without one they are not signed.
    std::string updateKey = builtInUpdateKey();
};

/// Asks the service for a newer version of the Resolve plugin than the one that ships with this application, and
/// installs it.
///
/// Lives on the thread that made it. A check that is asked for while a check runs ends at once and does nothing, and so
/// does a second download; a check and a download may overlap. Operations fail to nobody, a failure is the
/// `errorMessage`. An operation that still waits when the manager is destroyed ends without touching it, after the step
/// it is in.
class UpdateManager : public QObject {
    Q_OBJECT
public:
    explicit UpdateManager(UpdateMeans means);

    // As the service last told.
    [[nodiscard]] const std::optional<std::string>& latestVersion() const { return m_latestVersion; }
    [[nodiscard]] bool updateAvailable() const { return m_updateAvailable; } ///< newer than the plugin that ships
    [[nodiscard]] const std::optional<std::string>& releaseNotes() const { return m_releaseNotes; }

    [[nodiscard]] bool isChecking() const { return m_isChecking; }
    [[nodiscard]] bool isDownloading() const { return m_isDownloading; }         ///< or installing
    [[nodiscard]] double downloadProgress() const { return m_downloadProgress; } ///< 0.0, 0.5, 0.8 or 1.0
    [[nodiscard]] const std::optional<std::string>& statusMessage() const { return m_statusMessage; }
    [[nodiscard]] const std::optional<std::string>& errorMessage() const { return m_errorMessage; } ///< last failure

    /// Whether updates are checked against a key of their publisher.
    [[nodiscard]] bool areUpdatesSigned() const { return !m_means.updateKey.empty(); }

    /// Asks the service for its newest version.
    QCoro::Task<> checkForUpdates();

    /// Installs what the last check found. Nothing runs with an administrator's rights before the archive has been
    /// found to be whole, signed (if this build has a key), within `updateLimits` and harmless, and what is installed
    /// is what was checked. After a failure the old plugin is in its place. A `PluginManager` is not notified.
    QCoro::Task<> downloadAndInstall();

Q_SIGNALS:
    void latestVersionChanged();
    void updateAvailableChanged();
    void releaseNotesChanged();
    void isCheckingChanged();
    void isDownloadingChanged();
    void downloadProgressChanged();
    void statusMessageChanged();
    void errorMessageChanged();

private:
    void take(const VersionInfo& info);
    /// What `downloadAndInstall` does once there is an address. Throws what went wrong through the task.
    static QCoro::Task<> installFrom(std::string url, UpdateMeans means, QPointer<UpdateManager> self);
    void beginInstallation();
    void endInstallation();

    template <class Value>
    void set(Value& field, Value value, void (UpdateManager::*changed)());
    void setChecking(bool checking);
    void setDownloading(bool downloading);
    void setProgress(double progress);
    void setStatusMessage(std::optional<std::string> message);
    void setErrorMessage(std::optional<std::string> message);

    UpdateMeans m_means;
    std::optional<std::string> m_downloadURL;

    std::optional<std::string> m_latestVersion;
    bool m_updateAvailable = false;
    std::optional<std::string> m_releaseNotes;
    bool m_isChecking = false;
    bool m_isDownloading = false;
    double m_downloadProgress = 0.0;
    std::optional<std::string> m_statusMessage;
    std::optional<std::string> m_errorMessage;
};

} // namespace zuvo
