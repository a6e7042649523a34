#include "ui/MineViewModel.h"

#include "base/Paths.h"
#include "base/Text.h"
#include "platform/FileSystem.h"
#include "platform/TopLevelTask.h"
#include "steps/ProjectMedia.h"

#include <QPointer>
#include <QVariantMap>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <utility>

namespace zuvo {

namespace {

constexpr double minutesOfACredit = 10.0;

/// Between two looks at a lock that is waited for. It is free for whoever comes first.
constexpr std::chrono::milliseconds lockPollInterval{250};

/// Share of a full mine's cost.
double costOf(MiningMode mode) {
    switch (mode) {
    case MiningMode::fullMine:
        break;
    case MiningMode::storyMine:
        return 0.5;
    case MiningMode::structure:
        return 0.25;
    case MiningMode::audit:
        return 0.3;
    }
    return 1.0;
}

double totalLength(const std::vector<StorySegment>& segments) {
    double seconds = 0.0;
    for (const auto& segment : segments)
        seconds += segment.endTime - segment.startTime;
    return seconds;
}

std::vector<std::string> pathsOf(const std::vector<DroppedFile>& files) {
    std::vector<std::string> paths;
    paths.reserve(files.size());
    for (const auto& file : files)
        paths.push_back(file.url.toLocalFile().toStdString());
    return paths;
}

/// What a project of these files is called.
std::string nameOf(const std::vector<DroppedFile>& files) {
    if (files.size() != 1)
        return "Dropped Files (" + std::to_string(files.size()) + ")";
    const auto name = files.front().filename().toStdString();
    return std::string(withoutExtension(name));
}

constexpr std::size_t mostShownFiles = 3;

QString listed(const std::vector<UnsavedFile>& unsaved) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < std::min(unsaved.size(), mostShownFiles); ++i)
        lines.push_back(harmlessText(lastPathComponent(unsaved[i].path)) + ": " + harmlessText(unsaved[i].reason));
    if (unsaved.size() > mostShownFiles)
        lines.push_back("and " + std::to_string(unsaved.size() - mostShownFiles) + " more");
    return QString::fromStdString(join(lines, "\n"));
}

/// The one file that a build starts from.
std::vector<PromisedFile> handOffOf(std::vector<PromisedFile> promised) {
    std::erase_if(promised, [](const PromisedFile& file) { return !file.path.ends_with("/segments.json"); });
    return promised;
}

QCoro::Task<> findTimelines(std::shared_ptr<ResolveBridge> bridge) {
    co_await bridge->connect();
    if (bridge->isConnected())
        co_await bridge->getTimelines();
}

QCoro::Task<> buildFromFile(std::shared_ptr<LocalPipeline> pipeline, std::shared_ptr<MineLock> /*lock*/) {
    co_await pipeline->buildTimelineFromSegmentsFile();
}

} // namespace

MineViewModel::MineViewModel(MineTools tools, QObject* parent) : QObject(parent), m_tools(std::move(tools)) {
    connect(m_tools.pipeline.get(), &LocalPipeline::auditReportChanged, this, &MineViewModel::followPageName);
    connect(this, &MineViewModel::currentStepChanged, this, &MineViewModel::followPageName);
    connect(this, &MineViewModel::selectedModeChanged, this, &MineViewModel::followPageName);
    connect(this, &MineViewModel::selectedModeChanged, this, &MineViewModel::followEstimate);
    connect(this, &MineViewModel::targetMinutesChanged, this, &MineViewModel::followEstimate);
    m_lockTimer.setInterval(lockPollInterval);
    connect(&m_lockTimer, &QTimer::timeout, this, &MineViewModel::askForLockAgain);
    followPageName();
    followEstimate();
}

void MineViewModel::followPageName() {
    set(m_pageName, wantedPageName(), &MineViewModel::pageNameChanged);
}

void MineViewModel::followEstimate() {
    const auto credits = std::max(1.0, std::ceil(m_targetMinutes / minutesOfACredit * costOf(m_selectedMode)));
    set(m_estimatedCredits, credits, &MineViewModel::estimatedCreditsChanged);
}

template <class Value>
void MineViewModel::set(Value& member, Value value, void (MineViewModel::*changed)()) {
    if (member == value)
        return;
    member = std::move(value);
    Q_EMIT(this->*changed)();
}

QString MineViewModel::wantedPageName() const {
    switch (m_currentStep) {
    case MineStep::setup:
        return QStringLiteral("SetupPage");
    case MineStep::style:
        return QStringLiteral("StylePage");
    case MineStep::processing:
        return QStringLiteral("ProcessingPage");
    case MineStep::review:
        break;
    case MineStep::done:
        return QStringLiteral("DonePage");
    }
    if (m_selectedMode != MiningMode::audit)
        return QStringLiteral("ReviewPage");
    return m_tools.pipeline->auditReport() ? QStringLiteral("AuditPage") : QStringLiteral("NoAuditReport");
}

QVariantList MineViewModel::steps() const {
    QVariantList list;
    for (const auto step : allMineSteps) {
        const auto* state = step < m_currentStep ? "passed" : step == m_currentStep ? "current" : "ahead";
        list.append(QVariantMap{{QStringLiteral("label"), QString::fromUtf8(label(step))},
                                {QStringLiteral("number"), static_cast<int>(step) + 1},
                                {QStringLiteral("state"), QString::fromUtf8(state)}});
    }
    return list;
}

void MineViewModel::advanceTo(MineStep step) {
    set(m_currentStep, step, &MineViewModel::currentStepChanged);
}

void MineViewModel::tapStep(int step) {
    if (step >= 0 && step < currentStepNumber())
        advanceTo(static_cast<MineStep>(step));
}

void MineViewModel::setSelectedTimeline(std::optional<std::string> timeline) {
    set(m_selectedTimeline, std::move(timeline), &MineViewModel::selectedTimelineChanged);
}

void MineViewModel::setSelectedMode(MiningMode mode) {
    set(m_selectedMode, mode, &MineViewModel::selectedModeChanged);
}

void MineViewModel::setTargetMinutes(double minutes) {
    set(m_targetMinutes, minutes, &MineViewModel::targetMinutesChanged);
}

void MineViewModel::setStyleSliders(const StyleSliders& sliders) {
    set(m_styleSliders, sliders, &MineViewModel::styleSlidersChanged);
}

void MineViewModel::setSelectedPresetId(std::optional<std::string> presetId) {
    set(m_selectedPresetId, std::move(presetId), &MineViewModel::selectedPresetIdChanged);
}

void MineViewModel::setReferenceURL(std::string url) {
    set(m_referenceURL, std::move(url), &MineViewModel::referenceURLChanged);
}

void MineViewModel::setMagicMode(bool isOn) {
    set(m_isMagicMode, isOn, &MineViewModel::magicModeChanged);
}

void MineViewModel::setDirectorNotes(std::string notes) {
    set(m_directorNotes, std::move(notes), &MineViewModel::directorNotesChanged);
}

void MineViewModel::setSelectedLanguage(std::string code) {
    set(m_selectedLanguage, std::move(code), &MineViewModel::selectedLanguageChanged);
}

void MineViewModel::setRating(std::optional<int> rating) {
    set(m_rating, rating, &MineViewModel::ratingChanged);
}

void MineViewModel::setDroppedFiles(std::vector<DroppedFile> files) {
    m_droppedFiles = std::move(files);
    Q_EMIT droppedFilesChanged();
}

void MineViewModel::finishProbe(const QUuid& id, std::optional<ProbeResult> result) {
    const auto found = std::find_if(m_droppedFiles.begin(), m_droppedFiles.end(),
                                    [&id](const DroppedFile& file) { return file.id == id; });
    if (found == m_droppedFiles.end())
        return;
    if (result)
        found->probeResult = std::move(result);
    found->isProbing = false;
    Q_EMIT droppedFilesChanged();
}

void MineViewModel::setSourceMode(SourceMode mode) {
    set(m_sourceMode, mode, &MineViewModel::sourceModeChanged);
}

void MineViewModel::setLoadedProject(std::optional<SavedProject> project) {
    if (!m_loadedProject && !project)
        return;
    m_loadedProject = std::move(project);
    Q_EMIT loadedProjectChanged();
}

void MineViewModel::listProjects() {
    m_savedProjects = m_tools.pipeline->listProjects();
    Q_EMIT savedProjectsChanged();
}

std::vector<StorySegment> MineViewModel::reviewSegments() const {
    const auto& results = m_tools.pipeline->results();
    return results ? results->segments : std::vector<StorySegment>();
}

std::vector<std::string> MineViewModel::mediaPaths() const {
    return m_tools.pipeline->lastMediaPaths().value_or(std::vector<std::string>());
}

std::vector<TranscriptSegment> MineViewModel::fullTranscript() const {
    const auto& transcript = m_tools.pipeline->lastTranscript();
    return transcript ? transcript->segments : std::vector<TranscriptSegment>();
}

void MineViewModel::show() {
    startTopLevelTask(this, "that looks for projects and timelines", [this, bridge = m_tools.resolveBridge] {
        listProjects();
        return findTimelines(bridge);
    });
}

void MineViewModel::setupNext() {
    advanceTo(MineStep::style);
}

void MineViewModel::startAudit() {
    advanceTo(MineStep::processing);
    startMining();
}

void MineViewModel::styleBack() {
    advanceTo(MineStep::setup);
}

void MineViewModel::styleNext() {
    advanceTo(MineStep::processing);
    startMining();
}

void MineViewModel::processingDone() {
    advanceTo(MineStep::review);
}

void MineViewModel::reanalyze() {
    advanceTo(MineStep::style);
}

void MineViewModel::skipToExport() {
    advanceTo(MineStep::done);
}

void MineViewModel::backToReview() {
    advanceTo(MineStep::review);
}

StoryChoices MineViewModel::storyChoices() const {
    StoryChoices choices;
    choices.targetMinutes = m_targetMinutes;
    choices.sliders = m_styleSliders;
    choices.presetId = m_selectedPresetId;
    choices.referenceURL = m_referenceURL;
    choices.isMagicMode = m_isMagicMode;
    choices.directorNotes = m_directorNotes;
    return choices;
}

MineChoices MineViewModel::mineChoices() const {
    MineChoices choices;
    choices.mode = m_selectedMode;
    choices.language = m_selectedLanguage;
    choices.story = storyChoices();
    return choices;
}

std::function<QCoro::Task<>()> MineViewModel::chosenRun() const {
    if (m_sourceMode == SourceMode::files) {
        if (m_droppedFiles.empty())
            return {};
        return [this, paths = pathsOf(m_droppedFiles)] { return m_tools.pipeline->run(paths, mineChoices()); };
    }
    if (!m_selectedTimeline)
        return {};
    if (m_selectedMode == MiningMode::audit)
        return [this, timeline = *m_selectedTimeline] { return m_tools.pipeline->auditTimeline(timeline); };
    if (m_loadedProject)
        return [this, project = *m_loadedProject] { return m_tools.pipeline->runFromProject(project, storyChoices()); };
    return [this, timeline = *m_selectedTimeline] { return m_tools.pipeline->run(timeline, mineChoices()); };
}

namespace {

/// What is done with the files that a complete run could not save.
using OnComplete = std::function<void(std::vector<UnsavedFile>)>;

/// Waits for a run of the flow's pipeline. It holds the pipeline and the lock of its cache folder but not the flow,
/// which may be gone when it ends.
QCoro::Task<> followRun(std::shared_ptr<LocalPipeline> pipeline, QCoro::Task<> run, OnComplete onComplete,
                        std::shared_ptr<MineLock> /*lock*/) {
    co_await std::move(run);
    if (pipeline->step() == PipelineStep::complete)
        onComplete(unsavedFiles(pipeline->promisedFiles()));
}

/// In place of a run that was cancelled before it began.
QCoro::Task<> nothing() {
    co_return;
}

} // namespace

QCoro::Task<> MineViewModel::mineAndGoOn(const std::function<QCoro::Task<>()>& begin, std::shared_ptr<MineLock> lock) {
    auto goOn = [flow = QPointer<MineViewModel>(this), cancelCount = m_cancelCount](std::vector<UnsavedFile> unsaved) {
        if (flow.isNull() || flow->m_cancelCount != cancelCount)
            return;
        flow->reportUnsaved(std::move(unsaved));
        flow->advanceTo(MineStep::review);
    };
    auto pipeline = m_tools.pipeline;
    auto run = begin(); // what it tells while it begins may end this flow
    return followRun(std::move(pipeline), std::move(run), std::move(goOn), std::move(lock));
}

std::string MineViewModel::chosenName() const {
    if (m_sourceMode == SourceMode::files)
        return displayName(pathsOf(m_droppedFiles));
    if (m_selectedMode == MiningMode::audit)
        return {};
    return m_loadedProject ? m_loadedProject->timeline : m_selectedTimeline.value_or("");
}

void MineViewModel::setNotice(Notice notice) {
    set(m_notice, std::move(notice), &MineViewModel::noticeChanged);
}

void MineViewModel::dismissNotice() {
    m_unsavedStory.clear();
    setNotice({});
}

void MineViewModel::reportUnsaved(std::vector<UnsavedFile> unsaved) {
    m_unsaved = std::move(unsaved);
    if (m_unsaved.empty())
        return;
    m_unsavedStory = m_tools.pipeline->promisedFiles();
    setNotice({QStringLiteral("This mine could not be saved"), listed(m_unsaved), true});
}

void MineViewModel::saveCopy(const QUrl& folder) {
    const auto outcome = saveCopies(m_unsavedStory, folder.toLocalFile().toStdString());
    if (!outcome.failure.empty()) {
        setNotice({QStringLiteral("The copy could not be saved"), QString::fromStdString(outcome.failure), true});
        return;
    }
    m_unsavedStory.clear();
    const auto place = QString::fromStdString(harmlessText(outcome.folder));
    setNotice({QStringLiteral("Copy saved"), QStringLiteral("The story is in ") + place, false});
}

bool MineViewModel::isUnsaved(std::string_view fileName) const {
    return std::any_of(m_unsaved.begin(), m_unsaved.end(),
                       [fileName](const UnsavedFile& file) { return lastPathComponent(file.path) == fileName; });
}

void MineViewModel::startMining() {
    auto begin = chosenRun();
    if (!begin)
        return;
    const auto refusal = mineNameRefusal(m_tools.pipeline->projectsDir(), chosenName());
    if (!refusal.empty()) {
        setNotice({QStringLiteral("This mine cannot be saved"), QString::fromStdString(refusal), false});
        advanceTo(MineStep::setup);
        return;
    }
    auto start = [this, begin = std::move(begin)](const std::shared_ptr<MineLock>& lock) {
        m_unsaved.clear();
        startTopLevelTask(this, "that mines", [this, lock, cancelCount = m_cancelCount, begin] {
            return m_cancelCount == cancelCount ? mineAndGoOn(begin, lock) : nothing();
        });
    };
    withMineLock(std::move(start), [this] { advanceTo(MineStep::style); });
}

void MineViewModel::withMineLock(LockedAction action, std::function<void()> onGivenUp) {
    const auto lock = MineLock::ofThisProgram(m_tools.pipeline->platform().environment);
    if (lock->isHeld())
        action(lock);
    else
        setPutOff({std::move(action), std::move(onGivenUp)}, lock->refusal());
}

void MineViewModel::setPutOff(PutOff putOff, const std::string& reason) {
    m_putOff = std::move(putOff);
    m_otherMine = QString::fromStdString(reason);
    m_lockTimer.stop();
    Q_EMIT otherMineChanged();
}

void MineViewModel::waitForOtherMine() {
    if (!m_putOff.action || isWaitingForOtherMine())
        return;
    m_lockTimer.start();
    Q_EMIT otherMineChanged();
}

void MineViewModel::askForLockAgain() {
    const auto lock = MineLock::ofThisProgram(m_tools.pipeline->platform().environment);
    if (lock->isHeld()) {
        const auto action = m_putOff.action;
        setPutOff({}, {});
        action(lock);
        return;
    }
    // Another one may have been quicker.
    const auto holder = QString::fromStdString(lock->refusal());
    if (m_otherMine != holder) {
        m_otherMine = holder;
        Q_EMIT otherMineChanged();
    }
}

void MineViewModel::giveUpWaiting() {
    if (!m_putOff.action)
        return;
    const auto onGivenUp = m_putOff.onGivenUp;
    setPutOff({}, {});
    if (onGivenUp)
        onGivenUp();
}

void MineViewModel::cancelMining() {
    ++m_cancelCount;
    if (m_putOff.action)
        setPutOff({}, {});
    m_tools.pipeline->cancel();
    m_tools.pipeline->reset();
    advanceTo(MineStep::style);
}

void MineViewModel::buildTimeline() {
    withMineLock([this](const std::shared_ptr<MineLock>& lock) {
        startTopLevelTask(this, "that builds a timeline",
                          [pipeline = m_tools.pipeline, lock] { return buildFromFile(pipeline, lock); });
    });
}

void MineViewModel::sendToResolve(std::vector<StorySegment> segments) {
    withMineLock([this, segments = std::move(segments)](const std::shared_ptr<MineLock>& /*lock*/) {
        sendToResolveNow(segments);
    });
}

void MineViewModel::sendToResolveNow(const std::vector<StorySegment>& segments) {
    if (const auto& results = m_tools.pipeline->results()) {
        auto edited = *results;
        edited.estimatedDuration = totalLength(segments);
        edited.segments = segments;
        m_tools.pipeline->setResults(std::move(edited));
        m_tools.pipeline->writeSegmentsJsonPublic(segments);
        // What an older hand-off holds is another story, and is not built as this one.
        if (const auto unsaved = unsavedFiles(handOffOf(m_tools.pipeline->promisedFiles())); !unsaved.empty()) {
            setNotice({QStringLiteral("The story could not be sent to Resolve"), listed(unsaved), false});
            advanceTo(MineStep::done);
            return;
        }
    }
    buildTimeline();
    advanceTo(MineStep::done);
}

void MineViewModel::loadProject(const SavedProject& saved) {
    const auto used = withAbsoluteMedia(saved);
    const auto& project = used.project;
    if (!used.refused.empty())
        setNotice(
            {QStringLiteral("Media are missing"), QString::fromStdString(refusedMediaMessage(used.refused)), false});
    m_unsaved.clear();
    setLoadedProject(project);
    setSelectedTimeline(project.timeline);
    setTargetMinutes(project.targetMinutes);
    if (project.presetId)
        setSelectedPresetId(project.presetId);
    if (!project.results) {
        advanceTo(MineStep::style);
        return;
    }
    m_tools.pipeline->setResults(*project.results);
    m_tools.pipeline->setLastMediaPaths(project.mediaPaths);
    // A name that leads out of the folder of projects has no folder for exports.
    m_tools.pipeline->setLastExportDir(folderWithin(m_tools.pipeline->projectsDir(), project.timeline));
    advanceTo(MineStep::review);
}

SavedProject MineViewModel::projectOfThisRun() const {
    SavedProject project;
    if (m_sourceMode == SourceMode::files)
        project.timeline = nameOf(m_droppedFiles);
    else
        project.timeline = m_selectedTimeline.value_or("Unknown");
    project.createdAt = secondsSince1970(m_tools.clock());
    project.language = m_selectedLanguage;
    project.mediaPaths = mediaPaths();
    project.results = m_tools.pipeline->results();
    project.presetId = m_selectedPresetId;
    project.targetMinutes = m_targetMinutes;
    return project;
}

void MineViewModel::restyle() {
    if (!m_loadedProject)
        setLoadedProject(projectOfThisRun());
    advanceTo(MineStep::style);
}

void MineViewModel::beginAgain() {
    setRating(std::nullopt);
    setLoadedProject(std::nullopt);
    listProjects();
}

void MineViewModel::resetFlow() {
    advanceTo(MineStep::setup);
    m_tools.pipeline->reset();
    beginAgain();
}

void MineViewModel::startFresh() {
    withMineLock([this](const std::shared_ptr<MineLock>& /*lock*/) {
        m_tools.pipeline->clearCaches();
        advanceTo(MineStep::setup);
        beginAgain();
    });
}

} // namespace zuvo
