#include "cli/MineSession.h"

#include "base/Text.h"
#include "cli/Streams.h"
#include "platform/TemporaryFile.h"
#include "steps/ProjectMedia.h"
#include "steps/ScriptLines.h"

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

std::string noSuchProject(const std::string& name) {
    return "there is no project called \"" + harmlessText(name) + "\"; zuvo projects lists them";
}

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
        if (!canBeCalled(displayName(files->files)))
            co_return end(false);
        auto choices = choicesForFootage(files->style);
        co_await m_pipeline->run(files->files, std::move(choices));
    } else if (const auto* timeline = std::get_if<MineTimelineCommand>(&command)) {
        if (!canBeCalled(timeline->timeline))
            co_return end(false);
        auto choices = choicesForFootage(timeline->style);
        co_await m_pipeline->run(timeline->timeline, std::move(choices));
    } else if (const auto* reload = std::get_if<ReloadCommand>(&command)) {
        const auto project = newestProject(*m_pipeline, reload->project);
        if (!project) {
            tell("zuvo: " + noSuchProject(reload->project));
            co_return end(false);
        }
        if (reload->style.language || reload->style.mode)
            tell("zuvo: --language and --mode have no effect with --reload: the project keeps its own");
        if (!canBeCalled(project->timeline))
            co_return end(false);
        auto used = withAbsoluteMedia(*project);
        if (!used.refused.empty())
            tell("zuvo: " + refusedMediaMessage(used.refused));
        auto choices = choicesForProject(reload->style, *project);
        co_await m_pipeline->runFromProject(std::move(used.project), std::move(choices));
    }
    if (m_pipeline->step() == PipelineStep::complete)
        co_return endOfMine();
    // A run that is interrupted while its timeline is built has its story by then.
    if (!promisedText(m_pipeline->promisedFiles(), "mining_results.json").empty())
        (void)checkResults();
    co_return end(false);
}

bool MineSession::canBeCalled(const std::string& name) {
    m_failure = mineNameRefusal(m_pipeline->projectsDir(), name);
    if (!m_failure.empty())
        tell("zuvo: " + m_failure);
    return m_failure.empty();
}

std::vector<UnsavedFile> MineSession::checkResults() {
    const auto& promised = m_pipeline->promisedFiles();
    auto unsaved = unsavedFiles(promised);
    if (unsaved.empty())
        return unsaved;
    m_console.clearProgress();
    for (const auto& file : unsaved) {
        tell("zuvo: " + unsavedMessage(file));
        if (m_pipeline->buildResult() && file.path.ends_with("/segments.json"))
            tell("zuvo: the timeline in Resolve was built of what that file held before, which may be another story");
    }
    m_failure = std::to_string(unsaved.size()) + " file" + std::string(pluralS(unsaved.size())) +
                " of this mine could not be saved";
    tell("zuvo: " + m_failure + "; the story follows on standard output");
    m_console.showStory(promisedText(promised, "story_brief.md"), promisedText(promised, "subtitles.srt"));
    return unsaved;
}

ExitStatus MineSession::endOfMine() {
    const auto unsaved = checkResults();
    const bool isSaved = unsaved.empty();
    const auto status = end(isSaved);
    const auto folder = m_pipeline->lastExportDir().value_or("");
    const auto liesThere = [&folder](const auto& file) { return file.path.starts_with(folder + "/"); };
    const auto& promised = m_pipeline->promisedFiles();
    // A folder that holds nothing of this mine, or does not exist, is not named.
    if (std::count_if(promised.begin(), promised.end(), liesThere) >
        std::count_if(unsaved.begin(), unsaved.end(), liesThere))
        tell("Export folder: " + harmlessText(folder));
    return isSaved ? status : ExitStatus::failed;
}

QCoro::Task<ExitStatus> MineSession::audit(AuditCommand command) {
    if (command.minesFirst) {
        if (!canBeCalled(command.timeline))
            co_return end(false);
        auto choices = choicesForFootage({});
        co_await m_pipeline->run(command.timeline, std::move(choices));
        // The audit begins anew, so what stopped the mine has to stop it here.
        if (m_interruption || m_pipeline->step() != PipelineStep::complete)
            co_return end(false);
        (void)checkResults();
    }
    co_await m_pipeline->auditTimeline(command.timeline);
    const auto& report = m_pipeline->auditReport();
    const bool complete = m_pipeline->step() == PipelineStep::complete && report.has_value();
    if (complete)
        m_console.showReport(*report);
    co_return end(complete && m_failure.empty());
}

QCoro::Task<ExitStatus> MineSession::build() {
    co_await m_pipeline->buildTimelineFromSegmentsFile();
    // The script counts a timeline without any of its moments as a success.
    const auto result = m_pipeline->buildResult().value_or("");
    const auto clips = result.starts_with("✓") ? appendedClips(result) : std::nullopt;
    const auto status = end(clips && clips->areAll());
    if (clips && !clips->areAll())
        tell("zuvo: " + std::to_string(clips->appended) + " of " + std::to_string(clips->total) +
             " moments are on the new timeline; the lines above say which are not");
    co_return status;
}

ExitStatus MineSession::end(bool complete) {
    RunEnd end;
    end.step = caseName(m_pipeline->step());
    end.interrupted = m_interruption && !complete;
    end.exportDir = complete ? m_pipeline->lastExportDir().value_or("") : "";
    end.errorMessage = m_pipeline->errorMessage().value_or(m_failure);
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
