#pragma once

#include <QCoroTask>
#include <QObject>
#include <QPointer>
#include <QProcess>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zuvo {

/// A child process to be run to its end. Its standard input is the null device.
struct ProcessRequest {
    std::string program; ///< absolute path
    std::vector<std::string> arguments;

    /// Variables set on top of `childEnvironment`.
    std::vector<std::pair<std::string, std::string>> variables;

    std::string workingFolder; ///< empty for the program's own

    bool keepsOutput = false; ///< else standard output goes to the null device
    bool keepsError = false;  ///< else standard error goes to the null device, or to `errorFile`

    /// File that takes standard error, created or emptied; empty for none.
    std::string errorFile;

    /// Files that the child makes are this user's alone (mode 0600, folders 0700), whatever the user's mask says.
    bool makesPrivateFiles = false;

    /// Cuts the child off from the terminal that this program may have been started from. A child that would ask there
    /// for a password stands still for ever otherwise, since it does not belong to the terminal's foreground.
    bool hasNoTerminal = false;
};

/// Where Python programs run: Python looks for modules in its working folder before all others, and the user's may hold
/// footage of anybody's.
inline constexpr const char* scriptWorkingFolder = "/";

/// More than this is not kept of one stream; the child runs on all the same.
inline constexpr std::size_t keptOutputLimit = 64UL * 1024 * 1024;

/// What has become of a child process.
struct ProcessOutcome {
    bool launched = false;
    std::string launchFailure;                    ///< the platform's words, if it was not launched
    bool succeeded = false;                       ///< it ended by itself with exit status 0
    std::string standardOutput;                   ///< any bytes; empty unless it was to be kept
    std::string standardError;                    ///< likewise
    std::optional<int> exitStatus = std::nullopt; ///< nothing if it was not launched or did not end by itself
};

/// Runs child processes one at a time or several at once, with the event loop free meanwhile. There is no time-out.
class ProcessRunner : public QObject {
    Q_OBJECT
public:
    /// Runs the child to its end. Never fails as a coroutine: a launch that fails is an outcome.
    virtual QCoro::Task<ProcessOutcome> run(ProcessRequest request) = 0;

    /// Ends every running child at once, with the children that they have started.
    virtual void endChildren() = 0;
};

/// The machine's own processes. Each child gets a process group of its own, so that a Ctrl-C on the terminal reaches
/// this program alone.
class ChildProcessRunner final : public ProcessRunner {
    Q_OBJECT
public:
    ~ChildProcessRunner() override;

    QCoro::Task<ProcessOutcome> run(ProcessRequest request) override;
    void endChildren() override;

private:
    std::vector<QPointer<QProcess>> m_children;
};

} // namespace zuvo
