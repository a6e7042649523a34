#pragma once

#include "plugin/UpdateManager.h"
#include "ui/InstallViewModel.h"

#include <QObject>
#include <QString>
#include <memory>
#include <qqmlregistration.h>

namespace zuvo {

/// The page that looks for a newer plugin and installs it, and that opens the page of the plugin itself.
class UpdateViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The shell makes one for each showing of the page")
    Q_PROPERTY(bool isChecking READ isChecking NOTIFY changed)
    Q_PROPERTY(QString checkText READ checkText NOTIFY changed)
    Q_PROPERTY(QString installedVersion READ installedVersion CONSTANT)
    Q_PROPERTY(QString latestVersion READ latestVersion NOTIFY changed)
    Q_PROPERTY(bool updateAvailable READ updateAvailable NOTIFY changed)
    Q_PROPERTY(QString updateLine READ updateLine NOTIFY changed)
    Q_PROPERTY(bool isInstalling READ isInstalling NOTIFY changed)
    Q_PROPERTY(QString installText READ installText NOTIFY changed)
    Q_PROPERTY(bool isUpToDate READ isUpToDate NOTIFY changed)
    Q_PROPERTY(QString installedNotice READ installedNotice NOTIFY changed)
    Q_PROPERTY(QString releaseNotes READ releaseNotes NOTIFY changed)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY changed)
    Q_PROPERTY(QString unsignedNotice READ unsignedNotice CONSTANT)
    Q_PROPERTY(zuvo::InstallViewModel* plugin READ plugin CONSTANT)
    Q_PROPERTY(bool isPluginInstalled READ isPluginInstalled NOTIFY pluginChanged)
    Q_PROPERTY(QString pluginText READ pluginText NOTIFY pluginChanged)
    Q_PROPERTY(QString pluginButtonText READ pluginButtonText NOTIFY pluginChanged)
    Q_PROPERTY(bool showsPlugin READ showsPlugin NOTIFY pluginChanged)
public:
    /// Looks which plugin is installed.
    UpdateViewModel(std::shared_ptr<UpdateManager> manager, std::shared_ptr<PluginManager> plugin,
                    QObject* parent = nullptr);

    [[nodiscard]] bool isChecking() const { return m_manager->isChecking(); }
    [[nodiscard]] QString checkText() const;
    [[nodiscard]] static QString installedVersion();
    [[nodiscard]] QString latestVersion() const; ///< "..." while it is asked for, "—" if it is not known
    [[nodiscard]] bool updateAvailable() const { return m_manager->updateAvailable(); }
    [[nodiscard]] QString updateLine() const;
    [[nodiscard]] bool isInstalling() const { return m_manager->isDownloading(); }
    [[nodiscard]] QString installText() const;
    /// Only after a check that succeeded.
    [[nodiscard]] bool isUpToDate() const;
    /// What an installation that went well asks the user to do; empty before.
    [[nodiscard]] QString installedNotice() const;
    [[nodiscard]] QString releaseNotes() const; ///< empty if there are none
    [[nodiscard]] QString errorMessage() const; ///< empty if there is none

    /// That this build does not check who published an update; empty if it does.
    [[nodiscard]] QString unsignedNotice() const;

    /// The side of the plugin's page, owned by this object.
    [[nodiscard]] InstallViewModel* plugin() { return &m_plugin; }
    [[nodiscard]] bool isPluginInstalled() const { return m_plugin.isInstalled(); }
    [[nodiscard]] QString pluginText() const;
    [[nodiscard]] QString pluginButtonText() const;
    [[nodiscard]] bool showsPlugin() const { return m_showsPlugin; } ///< the plugin's page is open

    /// Opens the plugin's page in the place of this one.
    Q_INVOKABLE void openPlugin();
    Q_INVOKABLE void closePlugin();

    /// Asks the service. The page does so when it comes on screen.
    Q_INVOKABLE void check();
    Q_INVOKABLE void install();

Q_SIGNALS:
    void changed();
    void pluginChanged();

private:
    void setShowsPlugin(bool shows);

    std::shared_ptr<UpdateManager> m_manager;
    std::shared_ptr<PluginManager> m_pluginManager;
    InstallViewModel m_plugin;
    bool m_showsPlugin = false;
};

} // namespace zuvo
