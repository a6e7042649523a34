#include "ui/ZuvoManagerApp.h"

#include "platform/ResourceFolder.h"

namespace zuvo {

AppWorld AppWorld::ofThisMachine(const std::string& applicationFolder, std::shared_ptr<DesktopOpener> desktop) {
    AppWorld world;
    world.platform = Platform::ofThisMachine();
    world.desktop = std::move(desktop);
    world.administrator = administratorShell(world.platform.processes);
    world.downloader = std::make_shared<NetworkDownloader>();
    world.resourceFolder = zuvo::resourceFolder(applicationFolder);
    return world;
}

ZuvoManagerApp::ZuvoManagerApp(AppWorld world)
    : m_world(std::move(world)),
      m_client(m_world.platform.http, accountAddresses(m_world.platform.environment)),
      m_authManager(std::make_shared<AuthManager>(m_client, m_world.desktop, m_world.platform.environment.tokenFile(),
                                                  m_world.platform.clock)),
      m_pluginManager(
          std::make_shared<PluginManager>(m_world.administrator, m_world.resourceFolder, m_world.pluginDirectory)) {
    UpdateMeans means{m_client, m_world.downloader, m_world.platform.processes, m_world.administrator, {}};
    means.temporaryFolder = [environment = m_world.platform.environment] { return environment.temporaryFolder(); };
    means.pluginDirectory = m_world.pluginDirectory;
    m_updateManager = std::make_shared<UpdateManager>(std::move(means));

    ShellServices services;
    services.authManager = m_authManager;
    services.updateManager = m_updateManager;
    services.pluginManager = m_pluginManager;
    services.desktop = m_world.desktop;
    services.billingUrl = m_client.addresses().billingURL;
    services.makeMineTools = [this] { return makeMineTools(); };
    m_content = std::make_unique<ContentViewModel>(std::move(services));
}

ZuvoManagerApp::~ZuvoManagerApp() {
    m_content.reset();
    m_world.platform.processes->endChildren();
}

void ZuvoManagerApp::handleCallback(const std::string& url) {
    m_authManager->handleCallback(url);
}

MineTools ZuvoManagerApp::makeMineTools() const {
    MineTools tools;
    tools.authManager = m_authManager;
    tools.resolveBridge = ResolveBridge::create(m_world.platform);
    tools.cloudProcessor = CloudProcessor::create(m_client, {m_world.platform.newUuid});
    tools.pipeline = LocalPipeline::create(m_world.platform);
    tools.clock = m_world.platform.clock;
    tools.desktop = m_world.desktop;
    return tools;
}

} // namespace zuvo
