#include "ui/UiWorld.h"

#include <stdexcept>

namespace zuvo::tests {

UiWorld::UiWorld() : platform(Platform::ofThisMachine()) {
    if (!services.listen())
        throw std::runtime_error("The stand-in found no port");
    services.setAccount({"user-1", "Marta Carballo", "marta@farofilms.example", 24, "Studio"});
    m_disk.makeFolder("home");
    variables = {{"OPENAI_API_KEY", "made-up-openai-key"},
                 {"ANTHROPIC_API_KEY", "made-up-anthropic-key"},
                 {"OPENAI_BASE_URL", services.transcriptionBase().toStdString()},
                 {"ANTHROPIC_BASE_URL", services.messagesBase().toStdString()},
                 {"ZUVO_SERVICE_URL", services.accountBase().toStdString()}};
    auto& environment = platform.environment;
    environment.home = home();
    environment.realHomeDir = home();
    environment.systemTemporaryFolder = m_disk.makeFolder("tmp");
    environment.variable = [kept = keptVariables](const std::string& name) -> std::optional<std::string> {
        const auto found = kept->find(name);
        return found == kept->end() ? std::nullopt : std::optional(found->second);
    };
}

void UiWorld::launch() {
    m_app.reset();
    AppWorld world;
    world.platform = platform;
    world.desktop = desktop;
    world.administrator = administrator;
    world.downloader = std::make_shared<NetworkDownloader>();
    world.resourceFolder = resourceFolder;
    world.pluginDirectory = pluginDirectory();
    m_app = std::make_unique<ZuvoManagerApp>(std::move(world));
}

void UiWorld::givenSignedInBefore() {
    m_disk.write("home/.zuvo/token.json", std::string(R"({"token":")") + token + R"("})");
}

} // namespace zuvo::tests
