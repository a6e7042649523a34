#include "cli/MineSession.h"

#include "cli/Streams.h"
#include "platform/TemporaryFile.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>

namespace zuvo {

namespace {

constexpr double standardMinutes = 5.0;

StoryChoices storyChoices(const StyleOptions& style, const std::optional<std::string>& presetId, double minutes) {
    StoryChoices choices;
    choices.targetMinutes = minutes;
    choices.sliders = slidersOf(style, presetId);
    choices.presetId = presetId;
    choices.isMagicMode = style.isMagicMode;
    choices.directorNotes = style.notes;
    return choices;
}

const char* stoppingLine(int signal) {
    switch (signal) {
    case SIGTERM:
        return "\nAsked to terminate: stopping after the current step. A second request stops at once.";
    case SIGHUP:
        return "\nThe terminal is gone: stopping after the current step.";
    default:
        return "\nStopping after the current step. Press Ctrl-C again to stop at once.";
    }
}

ExitStatus statusAfter(int signal) {
    switch (signal) {
    case SIGTERM:
        return ExitStatus::terminated;
    case SIGHUP:
        return ExitStatus::hungUp;
    default:
        return ExitStatus::interrupted;
    }
}

} // namespace

std::optional<SavedProject> newestProject(const LocalPipeline& pipeline, const std::string& name) {
    auto projects = pipeline.listProjects();
    const auto found = std::find_if(projects.begin(), projects.end(),
                                    [&name](const SavedProject& project) { return project.timeline == name; });
    if (found == projects.end())
        return std::nullopt;
    return std::move(*found);
}

StoryChoices choicesForProject(const StyleOptions& style, const SavedProject& project) {
    const auto presetId = style.presetId ? style.presetId : project.presetId;
    return storyChoices(style, presetId, style.minutes.value_or(project.targetMinutes));
}

MineChoices choicesForFootage(const StyleOptions& style) {
    MineChoices choices;
    choices.mode = style.mode.value_or(MiningMode::fullMine);
    choices.language = style.language.value_or("auto");
    choices.story = storyChoices(style, style.presetId, style.minutes.value_or(standardMinutes));
    return choices;
}

MineSession::MineSession(std::shared_ptr<LocalPipeline> pipeline, std::shared_ptr<ProcessRunner> processes,
                         Console console)
    : m_pipeline(std::move(pipeline)), m_processes(std::move(processes)), m_console(std::move(console)) {
    const auto showProgress = [this] {
        m_console.showProgress(m_pipeline->progress(), caseName(m_pipeline->step()), rawValue(m_pipeline->step()));
    };
    connect(m_pipeline.get(), &LocalPipeline::logAdded, this, [this] { m_console.showLog(m_pipeline->logs().back()); });
    connect(m_pipeline.get(), &LocalPipeline::progressChanged, this, showProgress);
    connect(m_pipeline.get(), &LocalPipeline::stepChanged, this, showProgress);
}

QCoro::Task<ExitStatus> MineSession::run(Command command) {
    try {
        const auto status = co_await start(std::move(command));
        co_return status;
    } catch (const std::exception& error) {
        m_console.clearProgress();
        tell(std::string("zuvo: it ended by an unforeseen failure: ") + error.what());
    }
    co_return ExitStatus::failed;
}

QCoro::Task<ExitStatus> MineSession::start(Command command) {
    auto status = ExitStatus::failed;
    if (auto* auditCommand = std::get_if<AuditCommand>(&command))
        status = co_await audit(*auditCommand);
    else if (std::holds_alternative<BuildCommand>(command))
        status = co_await build();
    else
        status = co_await mine(std::move(command));
    co_return status;
}

QCoro::Task<ExitStatus> MineSession::mine(Command command) {
    if (const auto* files = std::get_if<MineFilesCommand>(&command)) {
        auto choices = choicesForFootage(files->style);
        co_await m_pipeline->run(files->files, std::move(choices));
    } else if (const auto* timeline = std::get_if<MineTimelineCommand>(&command)) {
        auto choices = choicesForFootage(timeline->style);
        co_await m_pipeline->run(timeline->timeline, std::move(choices));
    } else if (const auto* reload = std::get_if<ReloadCommand>(&command)) {
        const auto project = newestProject(*m_pipeline, reload->project);
        if (!project) {
            tell("zuvo: there is no project called \"" + reload->project + "\"; zuvo projects lists them");
            co_return end(false);
        }
        if (reload->style.language || reload->style.mode)
            tell("zuvo: --language and --mode have no effect with --reload: the project keeps its own");
        auto choices = choicesForProject(reload->style, *project);
        co_await m_pipeline->runFromProject(*project, std::move(choices));
    }
    const bool complete = m_pipeline->step() == PipelineStep::complete;
    const auto status = end(complete);
    if (complete)
        tell("Export folder: " + m_pipeline->lastExportDir().value_or(""));
    co_return status;
}

QCoro::Task<ExitStatus> MineSession::audit(AuditCommand command) {
    if (command.minesFirst) {
        auto choices = choicesForFootage({});
        co_await m_pipeline->run(command.timeline, std::move(choices));
        // The audit begins anew, so what stopped the mine has to stop it here.
        if (m_interruption || m_pipeline->step() != PipelineStep::complete)
            co_return end(false);
    }
    co_await m_pipeline->auditTimeline(command.timeline);
    const auto& report = m_pipeline->auditReport();
    const bool complete = m_pipeline->step() == PipelineStep::complete && report.has_value();
    if (complete)
        m_console.showReport(*report);
    co_return end(complete);
}

QCoro::Task<ExitStatus> MineSession::build() {
    co_await m_pipeline->buildTimelineFromSegmentsFile();
    co_return end(m_pipeline->buildResult().value_or("").starts_with("✓"));
}

ExitStatus MineSession::end(bool complete) {
    RunEnd end;
    end.step = caseName(m_pipeline->step());
    end.interrupted = m_interruption && !complete;
    end.exportDir = complete ? m_pipeline->lastExportDir().value_or("") : "";
    end.errorMessage = m_pipeline->errorMessage().value_or("");
    end.buildResult = m_pipeline->buildResult().value_or("");
    m_console.showEnd(end);
    if (complete)
        return ExitStatus::complete;
    return m_interruption ? statusAfter(*m_interruption) : ExitStatus::failed;
}

void MineSession::interrupt(int signal) {
    if (!m_interruption) {
        m_interruption = signal;
        m_pipeline->cancel();
        tell(stoppingLine(signal));
        return;
    }
    if (signal == SIGHUP)
        return;
    m_console.clearProgress();
    m_processes->endChildren();
    TemporaryFile::removeAll();
    std::_Exit(static_cast<int>(statusAfter(signal)));
}

} // namespace zuvo
