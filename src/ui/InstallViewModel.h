#pragma once

#include "plugin/PluginManager.h"

#include <QObject>
#include <QString>
#include <memory>
#include <qqmlregistration.h>

namespace zuvo {

/// The page that installs and removes the Resolve plugin. The Updates page opens it; no entry of the sidebar does.
class InstallViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by whoever shows the page")
    Q_PROPERTY(bool isInstalled READ isInstalled NOTIFY changed)
    Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
    Q_PROPERTY(QString versionText READ versionText NOTIFY changed)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY changed)
    Q_PROPERTY(QString installText READ installText NOTIFY changed)
    Q_PROPERTY(QString reinstallText READ reinstallText NOTIFY changed)
    Q_PROPERTY(QString minimumResolve READ minimumResolve CONSTANT)
    Q_PROPERTY(bool confirmsUninstall READ confirmsUninstall NOTIFY confirmsUninstallChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY changed)
public:
    explicit InstallViewModel(std::shared_ptr<PluginManager> manager, QObject* parent = nullptr);

    [[nodiscard]] bool isInstalled() const { return m_manager->isInstalled(); }
    [[nodiscard]] QString statusText() const;
    [[nodiscard]] QString versionText() const; ///< empty if it is not installed
    [[nodiscard]] bool isBusy() const { return m_manager->isLoading(); }
    [[nodiscard]] QString installText() const;
    [[nodiscard]] QString reinstallText() const;
    [[nodiscard]] static QString minimumResolve();
    [[nodiscard]] bool confirmsUninstall() const { return m_confirmsUninstall; } ///< the alert stands
    [[nodiscard]] QString errorMessage() const;                                  ///< empty if there is none

    Q_INVOKABLE void install();
    Q_INVOKABLE void reinstall();
    Q_INVOKABLE void askToUninstall();
    Q_INVOKABLE void cancelUninstall();
    Q_INVOKABLE void uninstall(); ///< the alert's own button

Q_SIGNALS:
    void changed();
    void confirmsUninstallChanged();

private:
    void setConfirmsUninstall(bool confirms);

    std::shared_ptr<PluginManager> m_manager;
    bool m_confirmsUninstall = false;
};

} // namespace zuvo
