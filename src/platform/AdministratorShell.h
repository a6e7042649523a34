#pragma once

#include "platform/Processes.h"

#include <QCoroTask>
#include <memory>
#include <optional>
#include <string>

namespace zuvo {

/// What has become of a script that was to run with administrator rights.
struct AdministratorOutcome {
    enum class Ending {
        succeeded,
        couldNotCreate, ///< there is nothing that could be run
        failed,         ///< it ran and failed, or the user gave no password
    };

    Ending ending = Ending::succeeded;
    std::string failure; ///< of `failed`: the system's words on one line; empty if it has none

    [[nodiscard]] bool hasSucceeded() const { return ending == Ending::succeeded; }
};

/// The one way to administrator rights. What is to be done is the source of an AppleScript on every system:
///
///     do shell script "LINE" with administrator privileges
///
/// LINE being a line for /bin/sh, in which `\` and `"` are escaped by a `\`.
class AdministratorShell {
public:
    AdministratorShell() = default;
    virtual ~AdministratorShell() = default;
    AdministratorShell(const AdministratorShell&) = delete;
    AdministratorShell& operator=(const AdministratorShell&) = delete;

    /// Asks the user for a password, by the system's own dialog, and runs the script to its end; the event loop is free
    /// meanwhile. Never fails as a coroutine. The task no longer needs the object once it has started.
    virtual QCoro::Task<AdministratorOutcome> run(std::string appleScriptSource) = 0;
};

/// macOS: hands the source to osascript as it is.
class AppleScriptShell final : public AdministratorShell {
public:
    explicit AppleScriptShell(std::shared_ptr<ProcessRunner> processes, std::string osascript = "/usr/bin/osascript")
        : m_processes(std::move(processes)), m_osascript(std::move(osascript)) {}

    QCoro::Task<AdministratorOutcome> run(std::string appleScriptSource) override;

private:
    std::shared_ptr<ProcessRunner> m_processes;
    std::string m_osascript;
};

/// Linux: takes the line out of the source and runs it by pkexec, whose dialog is the desktop's. Where the desktop has
/// none it fails at once: pkexec's own dialog on a terminal is switched off, since a child of a program with windows
/// does not own the terminal.
class PolkitShell final : public AdministratorShell {
public:
    explicit PolkitShell(std::shared_ptr<ProcessRunner> processes, std::string pkexec = "/usr/bin/pkexec")
        : m_processes(std::move(processes)), m_pkexec(std::move(pkexec)) {}

    QCoro::Task<AdministratorOutcome> run(std::string appleScriptSource) override;

private:
    std::shared_ptr<ProcessRunner> m_processes;
    std::string m_pkexec;
};

/// The shell of the system that the program was built for.
[[nodiscard]] std::shared_ptr<AdministratorShell> administratorShell(std::shared_ptr<ProcessRunner> processes);

/// The line in `appleScriptSource`, its escapes undone; nothing if the source is not of the form above.
[[nodiscard]] std::optional<std::string> shellLineOf(const std::string& appleScriptSource);

/// The line with each `cp -R 'folder/' ...` written as `cp -R 'folder/.' ...`. On macOS a "/" behind the folder asks
/// for what is in it; GNU cp passes over the "/" and would put the folder itself into a target that exists. With "/."
/// it copies what is in the folder, hidden files included, whether the target exists or not: the same as on macOS.
[[nodiscard]] std::string withContentsCopied(const std::string& shellLine);

/// The system's own words in what osascript wrote on its standard error: "12:34: execution error: " before them and the
/// number behind them are dropped.
[[nodiscard]] std::string appleScriptFailure(const std::string& standardError);

} // namespace zuvo
