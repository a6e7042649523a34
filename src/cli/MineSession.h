#pragma once

#include "cli/Arguments.h"
#include "cli/Console.h"
#include "cli/ExitStatus.h"
#include "pipeline/LocalPipeline.h"

#include <QCoroTask>
#include <QObject>
#include <memory>

namespace zuvo {

/// One mine, build or audit on the command line: its lines and progress to the console, its end to an exit status, and
/// Ctrl-C in between.
class MineSession : public QObject {
    Q_OBJECT
public:
    MineSession(std::shared_ptr<LocalPipeline> pipeline, std::shared_ptr<ProcessRunner> processes, Console console);

    /// Runs the command to its end. Failures are exit statuses; nothing is thrown.
    QCoro::Task<ExitStatus> run(Command command);

    /// Asked to end by SIGINT, SIGTERM or SIGHUP: the first time asks the run to stop, the second time ends its
    /// children and the program at once, with no temporary file left. The end of a terminal is reported more than once
    /// and never counts as the second time.
    void interrupt(int signal);

private:
    QCoro::Task<ExitStatus> start(Command command);
    QCoro::Task<ExitStatus> mine(Command command);
    QCoro::Task<ExitStatus> audit(AuditCommand command);
    QCoro::Task<ExitStatus> build();

    /// Whether a mine of that name can be saved at all; if not, says so.
    [[nodiscard]] bool canBeCalled(const std::string& name);
    /// Looks whether what the run promises is on the disk. If not, says which and why, and prints the story, so that
    /// nothing paid for is lost. Gives the files that are not.
    [[nodiscard]] std::vector<UnsavedFile> checkResults();
    [[nodiscard]] ExitStatus endOfMine();

    /// The last line of the JSON form, and the exit status.
    [[nodiscard]] ExitStatus end(bool complete);

    std::shared_ptr<LocalPipeline> m_pipeline;
    std::shared_ptr<ProcessRunner> m_processes;
    Console m_console;
    std::optional<int> m_interruption; ///< the first signal
    std::string m_failure;             ///< why the session fails though no stage of the run did; empty if it does not
};

/// The saved project that a name stands for: the newest of exactly that name.
[[nodiscard]] std::optional<SavedProject> newestProject(const LocalPipeline& pipeline, const std::string& name);

/// The message for a name without a project.
[[nodiscard]] std::string noSuchProject(const std::string& name);

/// Minutes, preset and sliders as given, else the project's own.
[[nodiscard]] StoryChoices choicesForProject(const StyleOptions& style, const SavedProject& project);

/// As given, else the defaults.
[[nodiscard]] MineChoices choicesForFootage(const StyleOptions& style);

} // namespace zuvo
