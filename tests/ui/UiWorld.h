#pragma once

#include "fakes/KeptDesktop.h"
#include "fakes/RecordingAdministratorShell.h"
#include "fakes/TemporaryFolder.h"
#include "standin/StandIn.h"
#include "ui/WindowEngine.h"
#include "ui/ZuvoManagerApp.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zuvo::tests {

/// The whole application in a world of its own: a home folder, the stand-in for every service, a desktop that only
/// remembers, an administrator's shell that asks nobody.
class UiWorld {
public:
    UiWorld();

    /// Starts the application as at a launch of the program; an earlier one ends first.
    void launch();

    /// A token that the service takes lies where an earlier start of the program left it. Before `launch`.
    void givenSignedInBefore();

    [[nodiscard]] std::string home() const { return m_disk / "home"; }
    [[nodiscard]] std::string pluginDirectory() const { return m_disk / "plugins/com.tarnwick.zuvo"; }
    [[nodiscard]] std::string tokenFile() const { return home() + "/.zuvo/token.json"; }
    [[nodiscard]] const TemporaryFolder& disk() const { return m_disk; }

    [[nodiscard]] ZuvoManagerApp& app() { return *m_app; }
    [[nodiscard]] ContentViewModel& content() { return *m_app->content(); }
    /// The view model of the page that stands, if it is of that kind.
    template <class Model>
    [[nodiscard]] Model* page() {
        return qobject_cast<Model*>(content().page());
    }

    standin::StandIn services;
    std::shared_ptr<KeptDesktop> desktop = std::make_shared<KeptDesktop>();
    std::shared_ptr<RecordingAdministratorShell> administrator = std::make_shared<RecordingAdministratorShell>();
    /// The environment's variables. A mine that a test leaves behind still asks for them.
    std::shared_ptr<std::map<std::string, std::string>> keptVariables =
        std::make_shared<std::map<std::string, std::string>>();
    std::map<std::string, std::string>& variables = *keptVariables;
    Platform platform;                         ///< may be changed before `launch`
    std::optional<std::string> resourceFolder; ///< of what ships with the application; before `launch`

    static constexpr const char* token = "zuvo_made-up-token";

private:
    TemporaryFolder m_disk;
    std::unique_ptr<ZuvoManagerApp> m_app;
};

} // namespace zuvo::tests
