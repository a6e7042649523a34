#pragma once

#include "fakes/TemporaryFolder.h"
#include "platform/AdministratorShell.h"

#include <QCoroFuture>
#include <QPromise>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zuvo::tests {

/// Keeps the sources it is given and ends each in the planned way, or well. No password is asked for, and nothing is
/// run but after `runsWithin`.
class RecordingAdministratorShell final : public AdministratorShell {
public:
    QCoro::Task<AdministratorOutcome> run(std::string appleScriptSource) override {
        sources.push_back(appleScriptSource);
        if (meanwhile)
            meanwhile();
        auto outcome = AdministratorOutcome();
        if (!m_plan.empty()) {
            outcome = std::move(m_plan.front());
            m_plan.pop_front();
        }
        if (m_isHeld)
            return endHeld(m_held, std::move(outcome));
        if (m_inner)
            return runWithin(m_inner, std::move(appleScriptSource), m_folder);
        return end(std::move(outcome));
    }

    void thenFails(std::string words) { m_plan.push_back({AdministratorOutcome::Ending::failed, std::move(words)}); }
    void thenCannotCreate() { m_plan.push_back({AdministratorOutcome::Ending::couldNotCreate, {}}); }

    /// The password dialog stands from now on, until `letGo`.
    void hold() {
        m_isHeld = true;
        m_held->start();
    }
    void letGo() {
        m_isHeld = false;
        m_held->finish();
    }

    /// From now on the lines are really run, without any rights, by the shell of Linux with a pkexec that asks nobody.
    /// A line that names a path outside of `folder` is refused. Programs in `folder`/bin are found before the system's.
    void runsWithin(const TemporaryFolder& folder, std::shared_ptr<ProcessRunner> processes) {
        const auto pkexec =
            folder.write("fake-pkexec", "#!/bin/sh\nshift\nPATH='" + (folder / "bin") + "':$PATH exec \"$@\"\n");
        std::filesystem::permissions(pkexec, std::filesystem::perms::owner_all);
        m_folder = folder.path();
        m_inner = std::make_shared<PolkitShell>(std::move(processes), pkexec);
    }

    /// Called while the password would be asked for.
    std::function<void()> meanwhile;

    std::vector<std::string> sources;

private:
    static QCoro::Task<AdministratorOutcome> end(AdministratorOutcome outcome) { co_return outcome; }

    static QCoro::Task<AdministratorOutcome> endHeld(std::shared_ptr<QPromise<void>> held,
                                                     AdministratorOutcome outcome) {
        co_await held->future();
        co_return outcome;
    }

    static QCoro::Task<AdministratorOutcome> runWithin(std::shared_ptr<AdministratorShell> inner, std::string source,
                                                       std::string folder) {
        for (auto at = source.find("'/"); at != std::string::npos; at = source.find("'/", at + 1)) {
            if (source.compare(at + 1, folder.size() + 1, folder + "/") != 0)
                throw std::runtime_error("A path outside of the test's folder: " + source);
        }
        const auto outcome = co_await inner->run(std::move(source));
        co_return outcome;
    }

    std::deque<AdministratorOutcome> m_plan;
    bool m_isHeld = false;
    std::shared_ptr<QPromise<void>> m_held = std::make_shared<QPromise<void>>();
    std::string m_folder;
    std::shared_ptr<AdministratorShell> m_inner;
};

} // namespace zuvo::tests
