#pragma once

#include "platform/DesktopOpener.h"
#include "platform/Platform.h"
#include "plugin/PluginManager.h"
#include "ui/ContentViewModel.h"

#include <QObject>
#include <memory>
#include <optional>
#include <string>

namespace zuvo {

/// What the application is given by the machine that it runs on.
struct AppWorld {
    Platform platform;
    std::shared_ptr<DesktopOpener> desktop;
    std::shared_ptr<AdministratorShell> administrator;
    std::shared_ptr<Downloader> downloader;
    std::optional<std::string> resourceFolder;
    std::string pluginDirectory = Constants::Paths::pluginDirectory;

    [[nodiscard]] static AppWorld ofThisMachine(const std::string& applicationFolder,
                                                std::shared_ptr<DesktopOpener> desktop);
};

/// The application without its window: the one account, the one plugin manager and the one update manager of the
/// program, and the content of its window.
class ZuvoManagerApp final : public QObject {
    Q_OBJECT
public:
    explicit ZuvoManagerApp(AppWorld world);
    /// Child processes that still run are ended.
    ~ZuvoManagerApp() override;

    [[nodiscard]] ContentViewModel* content() { return m_content.get(); }
    [[nodiscard]] const std::shared_ptr<AuthManager>& authManager() const { return m_authManager; }
    [[nodiscard]] const std::shared_ptr<PluginManager>& pluginManager() const { return m_pluginManager; }
    [[nodiscard]] const std::shared_ptr<UpdateManager>& updateManager() const { return m_updateManager; }

    /// Takes a URL that was opened with the application. A sign-in link signs in; any other is passed over.
    void handleCallback(const std::string& url);

private:
    [[nodiscard]] MineTools makeMineTools() const;

    AppWorld m_world;
    APIClient m_client;
    std::shared_ptr<AuthManager> m_authManager;
    std::shared_ptr<PluginManager> m_pluginManager;
    std::shared_ptr<UpdateManager> m_updateManager;
    std::unique_ptr<ContentViewModel> m_content;
};

} // namespace zuvo
