#include "ui/SetupPageModel.h"

#include "base/Numbers.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "platform/TopLevelTask.h"

#include <QCoroFuture>
#include <QPromise>
#include <QSet>
#include <QSysInfo>
#include <QVariantMap>
#include <algorithm>
#include <array>
#include <deque>
#include <iterator>
#include <utility>

namespace zuvo {

/// Lets so many probes in at once that they keep a machine busy without using up its processes and open files; the
/// others wait in the order in which they came.
class ProbeGate {
public:
    /// Finishes when there is a place. Whoever has it gives it back by `leave`.
    [[nodiscard]] QFuture<void> enter() {
        QPromise<void> place;
        place.start();
        auto given = place.future();
        if (m_running < mostAtOnce) {
            ++m_running;
            place.finish();
        } else {
            m_waiting.push_back(std::move(place));
        }
        return given;
    }

    void leave() {
        if (m_waiting.empty()) {
            --m_running;
            return;
        }
        auto next = std::move(m_waiting.front());
        m_waiting.pop_front();
        next.finish();
    }

private:
    static constexpr int mostAtOnce = 8;

    int m_running = 0;
    std::deque<QPromise<void>> m_waiting;
};

namespace {

constexpr std::array acceptedExtensions = {"wav", "mp3", "aiff", "aif", "flac", "mov", "mp4", "mxf", "m4a", "aac"};
constexpr std::array pictureExtensions = {"mov", "mp4", "mxf"};
constexpr std::size_t recentMineCount = 3;

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// A name of somebody else's making, on one line and with nothing in it that is not seen.
QString shownName(std::string_view utf8) {
    return text(harmlessText(utf8));
}

QString extensionOf(const QUrl& url) {
    return QString::fromStdString(pathExtension(url.path().toStdString())).toLower();
}

template <std::size_t size>
bool isOneOf(const QString& extension, const std::array<const char*, size>& extensions) {
    return std::any_of(extensions.begin(), extensions.end(),
                       [&extension](const char* one) { return extension == QLatin1String(one); });
}

/// One spelling for a file of this machine, which some desktops name in its URLs.
QUrl localUrl(QUrl url) {
    const auto host = url.host();
    if (host == QLatin1String("localhost") || host == QSysInfo::machineHostName().toLower())
        url.setHost(QString());
    if (!url.host().isEmpty())
        return url;
    return QUrl::fromLocalFile(url.toLocalFile()).adjusted(QUrl::NormalizePathSegments);
}

/// A place behind the gate, until it goes.
class ProbePlace {
public:
    explicit ProbePlace(std::shared_ptr<ProbeGate> gate) : m_gate(std::move(gate)) {}
    ~ProbePlace() { m_gate->leave(); }
    ProbePlace(const ProbePlace&) = delete;
    ProbePlace& operator=(const ProbePlace&) = delete;

private:
    std::shared_ptr<ProbeGate> m_gate;
};

bool lists(const QPointer<MineViewModel>& flow, const QUuid& id) {
    if (flow.isNull())
        return false;
    const auto& files = flow->droppedFiles();
    return std::any_of(files.begin(), files.end(), [&id](const DroppedFile& file) { return file.id == id; });
}

QCoro::Task<> probe(std::shared_ptr<ProbeGate> gate, std::shared_ptr<LocalPipeline> pipeline,
                    QPointer<MineViewModel> flow, QUuid id, std::string path) {
    co_await gate->enter();
    const ProbePlace place(gate);
    if (!lists(flow, id)) // removed while it waited
        co_return;
    auto result = co_await pipeline->probeMediaFile(path);
    if (!flow.isNull())
        flow->finishProbe(id, std::move(result));
}

QCoro::Task<> askForTimelines(std::shared_ptr<ResolveBridge> bridge) {
    co_await bridge->connect();
    if (bridge->isConnected())
        co_await bridge->getTimelines();
}

ListRow rowOf(const DroppedFile& file, const QString& sizeText) {
    QString duration;
    QString sampleRate;
    if (file.probeResult && !file.isProbing) {
        duration = SetupPageModel::formatDuration(file.probeResult->duration);
        if (file.probeResult->sampleRate)
            sampleRate = QString::number(*file.probeResult->sampleRate) + QStringLiteral("Hz");
    }
    const auto id = file.id.toString();
    return {id,
            {id, shownName(file.filename().toStdString()), SetupPageModel::symbolFor(file.url), file.isProbing,
             duration, sampleRate, sizeText}};
}

ListRow rowOf(const SavedProject& project) {
    const auto count = project.results ? QString::number(project.results->segments.size()) + QStringLiteral(" clips")
                                       : QString::number(project.transcript.size()) + QStringLiteral(" segments");
    return {text(project.id()),
            {shownName(project.timeline), project.results.has_value(), count,
             QString::number(truncated(project.targetMinutes)) + QStringLiteral("m target"),
             shownName(project.presetId.value_or(std::string()))}};
}

} // namespace

SetupPageModel::SetupPageModel(QObject* parent)
    : QObject(parent),
      m_probeGate(std::make_shared<ProbeGate>()),
      m_files({"fileId", "filename", "symbol", "isProbing", "durationText", "sampleRateText", "sizeText"}),
      m_recentMines({"name", "hasResults", "countText", "targetText", "presetId"}) {}

void SetupPageModel::setFlow(MineViewModel* flow) {
    if (m_flow == flow)
        return;
    if (!m_flow.isNull()) {
        m_flow->disconnect(this);
        m_flow->resolveBridge()->disconnect(this);
    }
    m_flow = flow;
    if (flow != nullptr) {
        connect(flow, &MineViewModel::droppedFilesChanged, this, &SetupPageModel::listFiles);
        connect(flow, &MineViewModel::sourceModeChanged, this, &SetupPageModel::sourceChanged);
        connect(flow, &MineViewModel::selectedTimelineChanged, this, &SetupPageModel::sourceChanged);
        connect(flow, &MineViewModel::savedProjectsChanged, this, &SetupPageModel::listRecentMines);
        connect(flow, &MineViewModel::selectedModeChanged, this, &SetupPageModel::choicesChanged);
        connect(flow, &MineViewModel::selectedLanguageChanged, this, &SetupPageModel::choicesChanged);
        connect(flow, &MineViewModel::targetMinutesChanged, this, &SetupPageModel::choicesChanged);
        const auto* bridge = flow->resolveBridge().get();
        connect(bridge, &ResolveBridge::isConnectedChanged, this, &SetupPageModel::sourceChanged);
        connect(bridge, &ResolveBridge::projectNameChanged, this, &SetupPageModel::sourceChanged);
        connect(bridge, &ResolveBridge::timelinesChanged, this, &SetupPageModel::sourceChanged);
    }
    listFiles();
    listRecentMines();
    Q_EMIT choicesChanged();
    Q_EMIT flowChanged();
}

void SetupPageModel::listFiles() {
    std::vector<ListRow> rows;
    QHash<QUuid, ShownSize> sizes;
    if (!m_flow.isNull()) {
        for (const auto& file : m_flow->droppedFiles()) {
            rows.push_back(rowOf(file, sizeTextOf(file)));
            sizes.insert(file.id, m_sizes.value(file.id));
        }
    }
    m_sizes = std::move(sizes); // without those of files that have gone
    m_files.setRows(std::move(rows));
    Q_EMIT sourceChanged();
}

QString SetupPageModel::sizeTextOf(const DroppedFile& file) {
    auto& size = m_sizes[file.id];
    // A file that was still being written when it came may be whole by the time its probe has returned.
    if (size.text.isEmpty() || size.isProbing != file.isProbing)
        size = {file.formattedSize(), file.isProbing};
    return size.text;
}

void SetupPageModel::listRecentMines() {
    std::vector<ListRow> rows;
    if (!m_flow.isNull()) {
        const auto& projects = m_flow->savedProjects();
        const auto count = std::min(projects.size(), recentMineCount);
        for (std::size_t i = 0; i < count; ++i)
            rows.push_back(rowOf(projects.at(i)));
    }
    m_recentMines.setRows(std::move(rows));
}

// The source.

bool SetupPageModel::isFromFiles() const {
    return m_flow.isNull() || m_flow->sourceMode() == SourceMode::files;
}

bool SetupPageModel::hasFiles() const {
    return !m_flow.isNull() && !m_flow->droppedFiles().empty();
}

QString SetupPageModel::fileCountText() const {
    const auto count = m_flow.isNull() ? 0 : m_flow->droppedFiles().size();
    return QString::number(count) + QStringLiteral(" file") + text(pluralS(count));
}

bool SetupPageModel::sourceReady() const {
    return isFromFiles() ? hasFiles() : isConnected();
}

bool SetupPageModel::actionEnabled() const {
    return isFromFiles() ? hasFiles() : m_flow->selectedTimeline().has_value();
}

void SetupPageModel::chooseFiles() {
    if (!m_flow.isNull())
        m_flow->setSourceMode(SourceMode::files);
}

void SetupPageModel::chooseResolve() {
    if (!m_flow.isNull())
        m_flow->setSourceMode(SourceMode::resolve);
}

void SetupPageModel::handleDrop(const QList<QUrl>& urls) {
    if (m_flow.isNull())
        return;
    auto files = m_flow->droppedFiles();
    QSet<QUrl> known;
    for (const auto& file : files)
        known.insert(file.url);
    std::vector<DroppedFile> added;
    for (const auto& url : urls) {
        DroppedFile file;
        file.url = localUrl(url);
        if (!url.isLocalFile() || !isAccepted(url) || known.contains(file.url))
            continue;
        known.insert(file.url);
        added.push_back(std::move(file));
    }
    if (added.empty())
        return;
    files.insert(files.end(), added.begin(), added.end());
    m_flow->setDroppedFiles(std::move(files));
    for (const auto& file : added)
        startProbe(file);
}

void SetupPageModel::addChosenFiles(const QList<QUrl>& urls) {
    handleDrop(urls);
}

void SetupPageModel::startProbe(const DroppedFile& file) {
    startTopLevelTask(m_flow, "that probes a file",
                      [gate = m_probeGate, pipeline = m_flow->pipeline(), flow = m_flow, id = file.id,
                       path = file.url.toLocalFile().toStdString()] { return probe(gate, pipeline, flow, id, path); });
}

void SetupPageModel::removeFile(const QString& fileId) {
    if (m_flow.isNull())
        return;
    auto files = m_flow->droppedFiles();
    std::erase_if(files, [id = QUuid(fileId)](const DroppedFile& file) { return file.id == id; });
    m_flow->setDroppedFiles(std::move(files));
}

void SetupPageModel::clearFiles() {
    if (!m_flow.isNull())
        m_flow->setDroppedFiles({});
}

QStringList SetupPageModel::fileFilters() {
    QStringList patterns;
    for (const auto* extension : acceptedExtensions) {
        const auto lower = QLatin1String(extension);
        patterns << QStringLiteral("*.") + lower << QStringLiteral("*.") + QString(lower).toUpper();
    }
    return {QStringLiteral("Audio and video (%1)").arg(patterns.join(QLatin1Char(' '))),
            QStringLiteral("All files (*)")};
}

bool SetupPageModel::isAccepted(const QUrl& url) {
    return isOneOf(extensionOf(url), acceptedExtensions);
}

QString SetupPageModel::symbolFor(const QUrl& url) {
    return isOneOf(extensionOf(url), pictureExtensions) ? QStringLiteral("film") : QStringLiteral("waveform");
}

QString SetupPageModel::formatDuration(double seconds) {
    constexpr std::int64_t secondsOfAMinute = 60;
    const auto whole = truncated(seconds);
    return QStringLiteral("%1:%2").arg(whole / secondsOfAMinute).arg(whole % secondsOfAMinute, 2, 10, QLatin1Char('0'));
}

// DaVinci Resolve.

bool SetupPageModel::isConnected() const {
    return !m_flow.isNull() && m_flow->resolveBridge()->isConnected();
}

QString SetupPageModel::connectionTitle() const {
    return isConnected() ? QStringLiteral("Connected") : QStringLiteral("Not Connected");
}

QString SetupPageModel::connectionDetail() const {
    if (m_flow.isNull() || !m_flow->resolveBridge()->projectName())
        return QStringLiteral("DaVinci Resolve not detected");
    return shownName(*m_flow->resolveBridge()->projectName());
}

bool SetupPageModel::hasTimelines() const {
    return !m_flow.isNull() && !m_flow->resolveBridge()->timelines().empty();
}

QStringList SetupPageModel::timelineRows() const {
    QStringList rows{QStringLiteral("Select a timeline…")};
    if (!m_flow.isNull()) {
        for (const auto& name : m_flow->resolveBridge()->timelines())
            rows.append(shownName(name));
    }
    return rows;
}

int SetupPageModel::timelineRow() const {
    if (m_flow.isNull() || !m_flow->selectedTimeline())
        return 0;
    const auto& names = m_flow->resolveBridge()->timelines();
    const auto found = std::find(names.begin(), names.end(), *m_flow->selectedTimeline());
    return found == names.end() ? -1 : static_cast<int>(std::distance(names.begin(), found)) + 1;
}

QString SetupPageModel::timelineName() const {
    return m_flow.isNull() ? QString() : shownName(m_flow->selectedTimeline().value_or(std::string()));
}

void SetupPageModel::chooseTimeline(int row) {
    if (m_flow.isNull())
        return;
    const auto& names = m_flow->resolveBridge()->timelines();
    if (row == 0)
        m_flow->setSelectedTimeline(std::nullopt);
    else if (row > 0 && static_cast<std::size_t>(row) <= names.size())
        m_flow->setSelectedTimeline(names.at(static_cast<std::size_t>(row) - 1));
}

void SetupPageModel::refresh() {
    if (m_flow.isNull())
        return;
    startTopLevelTask(m_flow, "that connects to Resolve anew",
                      [bridge = m_flow->resolveBridge()] { return askForTimelines(bridge); });
}

// The choices.

QVariantList SetupPageModel::modes() {
    QVariantList list;
    for (const auto mode : allMiningModes) {
        const auto& words = texts(mode);
        list.append(QVariantMap{{QStringLiteral("label"), text(words.modeLabel)},
                                {QStringLiteral("subtitle"), text(words.subtitle)},
                                {QStringLiteral("color"), text(words.color)}});
    }
    return list;
}

int SetupPageModel::mode() const {
    return m_flow.isNull() ? 0 : static_cast<int>(m_flow->selectedMode());
}

void SetupPageModel::chooseMode(int mode) {
    if (!m_flow.isNull() && mode >= 0 && static_cast<std::size_t>(mode) < allMiningModes.size())
        m_flow->setSelectedMode(allMiningModes.at(static_cast<std::size_t>(mode)));
}

bool SetupPageModel::isAudit() const {
    return !m_flow.isNull() && m_flow->selectedMode() == MiningMode::audit;
}

QString SetupPageModel::actionText() const {
    return isAudit() ? QStringLiteral("Start Audit") : QStringLiteral("Choose Style");
}

QStringList SetupPageModel::languages() {
    QStringList names;
    for (const auto& language : LANGUAGES)
        names.append(text(language.name));
    return names;
}

int SetupPageModel::language() const {
    if (m_flow.isNull())
        return 0;
    const auto* const found = std::find_if(LANGUAGES.begin(), LANGUAGES.end(), [this](const Language& one) {
        return one.code == m_flow->selectedLanguage();
    });
    return found == LANGUAGES.end() ? -1 : static_cast<int>(std::distance(LANGUAGES.begin(), found));
}

void SetupPageModel::chooseLanguage(int language) {
    if (!m_flow.isNull() && language >= 0 && static_cast<std::size_t>(language) < LANGUAGES.size())
        m_flow->setSelectedLanguage(std::string(LANGUAGES.at(static_cast<std::size_t>(language)).code));
}

double SetupPageModel::targetMinutes() const {
    return m_flow.isNull() ? 0.0 : m_flow->targetMinutes();
}

void SetupPageModel::chooseTargetMinutes(double minutes) {
    if (!m_flow.isNull())
        m_flow->setTargetMinutes(minutes);
}

QString SetupPageModel::targetText() const {
    return QString::number(truncated(targetMinutes())) + QStringLiteral(" min");
}

QString SetupPageModel::creditsText() const {
    const auto credits = m_flow.isNull() ? 0 : truncated(m_flow->estimatedCredits());
    return QStringLiteral("~%1 credit").arg(credits) + text(credits == 1 ? "" : "s");
}

// Going on.

void SetupPageModel::act() {
    if (m_flow.isNull() || !actionEnabled())
        return;
    if (isAudit())
        m_flow->startAudit();
    else
        m_flow->setupNext();
}

void SetupPageModel::loadMine(int row) {
    if (!m_flow.isNull() && row >= 0 && row < m_recentMines.count()) {
        // Copied: what the flow lists may change while it takes the project up.
        const auto project = m_flow->savedProjects().at(static_cast<std::size_t>(row));
        m_flow->loadProject(project);
    }
}

void SetupPageModel::deleteMine(int row) {
    if (m_flow.isNull() || row < 0 || row >= m_recentMines.count())
        return;
    m_flow->pipeline()->deleteProject(m_flow->savedProjects().at(static_cast<std::size_t>(row)));
    m_flow->listProjects();
}

} // namespace zuvo
