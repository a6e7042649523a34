#include "ui/DonePageModel.h"

#include "base/Files.h"
#include "base/Numbers.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "exporters/MediaList.h"
#include "model/FileLimits.h"
#include "platform/FileSystem.h"
#include "steps/Probing.h"

#include <QDateTime>
#include <QLocale>
#include <QVariantMap>
#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

namespace zuvo {

namespace {

constexpr double secondsOfAnHour = 3600.0;
constexpr double minutesOfAnHour = 60.0;
/// Hours of logging and paper editing that an hour of footage is reckoned to take by hand.
constexpr double manualHoursPerHour = 8.0;
/// Hours; what was saved is told only above it.
constexpr double leastSavedHours = 0.01;
constexpr int chipRows = 2;

struct PlainExport {
    const char* symbol;
    const char* label;
    const char* file;
};
constexpr std::array plainExportRows = {
    PlainExport{"doc.text", "SRT", "subtitles.srt"},
    PlainExport{"doc.plaintext", "The Echo", "transcript.txt"},
    PlainExport{"doc.richtext", "The Map", "story_brief.md"},
};

struct StoryExportRow {
    const char* symbol;
    const char* label;
    const char* line;
    const char* failure; ///< begins the status line
    ExportFormat format;
};
constexpr std::array storyExportRows = {
    StoryExportRow{"film.stack", "FCPXML", "FCP + Resolve", "FCPXML export failed: ", ExportFormat::fcpxml},
    StoryExportRow{"rectangle.stack.badge.play", "Premiere", "FCP7 XML",
                   "Premiere XML export failed: ", ExportFormat::premiere},
    StoryExportRow{"list.bullet.rectangle", "EDL", "Universal", "EDL export failed: ", ExportFormat::edl},
};

struct RatingRow {
    const char* symbol;
    const char* chosenSymbol;
    const char* label;
    int rating;
};
constexpr std::array ratingRows = {
    RatingRow{"hand.thumbsup", "hand.thumbsup.fill", "Good", 1},
    RatingRow{"hand.thumbsdown", "hand.thumbsdown.fill", "Needs work", 0},
};

/// Names and messages of others are among what is shown.
QString displayed(const std::string& text) {
    return QString::fromStdString(harmlessText(text));
}

template <std::size_t count, class Row>
const Row* rowAt(const std::array<Row, count>& rows, int index) {
    return index >= 0 && index < static_cast<int>(count) ? &rows.at(static_cast<std::size_t>(index)) : nullptr;
}

/// The distinct chapters of an act's moments in order. A number that names no moment is passed over, and so is a
/// chapter without a name, which no chip could show.
QStringList chaptersOf(const Act& act, const std::unordered_map<std::int64_t, const StorySegment*>& moments) {
    QStringList chapters;
    for (const auto index : act.segments) {
        const auto found = moments.find(index);
        if (found == moments.end() || !found->second->chapter || found->second->chapter->empty())
            continue;
        const auto chapter = displayed(*found->second->chapter);
        if (!chapters.contains(chapter))
            chapters.append(chapter);
    }
    return chapters;
}

constexpr const char* newestStory = "mining_results.json";

/// Whether that version holds what the file of the newest story holds.
bool isCopyOfNewest(const LocalPipeline& pipeline, const MineVersion& version) {
    const auto folder = pipeline.lastExportDir().value_or("") + "/";
    const auto newest = folder + newestStory;
    const auto copy = folder + "mining_results_v" + std::to_string(version.version) + ".json";
    return fileSize(newest) == fileSize(copy) &&
           readFile(newest, FileLimits::store) == readFile(copy, FileLimits::store);
}

QString dateText(double secondsSince1970) {
    const auto date = QDateTime::fromMSecsSinceEpoch(rounded(secondsSince1970 * 1000.0));
    return QLocale::c().toString(date, QStringLiteral("d MMM yyyy, HH:mm"));
}

QVariantMap tile(const char* symbol, const char* label, const std::string& value) {
    return {{QStringLiteral("symbol"), QString::fromUtf8(symbol)},
            {QStringLiteral("label"), QString::fromUtf8(label)},
            {QStringLiteral("value"), displayed(value)}};
}

/// How many of the chips from `first` on stand in one row of that room; at least one, so that no chip is lost for being
/// wide.
std::size_t chipsInRow(const std::vector<double>& widths, std::size_t first, double room, double spacing) {
    double taken = 0.0;
    std::size_t next = first;
    while (next < widths.size()) {
        const double end = taken + (next == first ? 0.0 : spacing) + widths[next];
        if (next > first && end > room)
            break;
        taken = end;
        ++next;
    }
    return next - first;
}

} // namespace

int chipsThatFit(const std::vector<double>& widths, double room, double spacing, double restWidth, int rows) {
    std::size_t next = 0;
    std::size_t lastRowStart = 0;
    for (int row = 0; row < rows && next < widths.size(); ++row) {
        lastRowStart = next;
        next += chipsInRow(widths, next, room, spacing);
    }
    if (next == widths.size())
        return static_cast<int>(next);
    // The last row shares its room with the chip that tells the rest.
    return static_cast<int>(lastRowStart + chipsInRow(widths, lastRowStart, room - spacing - restWidth, spacing));
}

void DonePageModel::setFlow(MineViewModel* flow) {
    if (m_flow == flow)
        return;
    for (const auto& connection : m_connections)
        disconnect(connection);
    m_connections.clear();
    m_flow = flow;
    setBuildState(false, {});
    if (!m_flow.isNull())
        follow();
    takeVersions();
    Q_EMIT flowChanged();
    Q_EMIT storyChanged();
    Q_EMIT savedTimeChanged();
    Q_EMIT magicModeChanged();
    Q_EMIT ratingChanged();
}

void DonePageModel::follow() {
    auto* pipeline = m_flow->pipeline().get();
    m_connections = {
        connect(pipeline, &LocalPipeline::resultsChanged, this, &DonePageModel::storyChanged),
        connect(pipeline, &LocalPipeline::probeResultsChanged, this, &DonePageModel::savedTimeChanged),
        connect(pipeline, &LocalPipeline::buildResultChanged, this, &DonePageModel::takeBuildResult),
        connect(pipeline, &LocalPipeline::lastExportDirChanged, this, &DonePageModel::takeVersions),
        connect(m_flow, &MineViewModel::magicModeChanged, this, &DonePageModel::magicModeChanged),
        connect(m_flow, &MineViewModel::ratingChanged, this, &DonePageModel::ratingChanged),
    };
    takeBuildResult();
}

const MiningResults* DonePageModel::results() const {
    if (m_flow.isNull() || !m_flow->pipeline()->results())
        return nullptr;
    return &*m_flow->pipeline()->results();
}

bool DonePageModel::hasResults() const {
    return results() != nullptr;
}

QString DonePageModel::momentsLine() const {
    const auto* story = results();
    if (story == nullptr)
        return {};
    return displayed(std::to_string(story->segments.size()) + " story moments  " +
                     formatDuration(story->estimatedDuration));
}

QVariantList DonePageModel::acts() const {
    QVariantList list;
    const auto* story = results();
    if (story == nullptr)
        return list;
    std::unordered_map<std::int64_t, const StorySegment*> moments;
    for (const auto& segment : story->segments)
        moments.emplace(segment.index, &segment);
    QStringList seen; // chapters in the order in which they first occur
    for (const auto& act : story->structure.acts) {
        const auto chapters = chaptersOf(act, moments);
        QVariantList gems;
        for (const auto& chapter : chapters) {
            if (!seen.contains(chapter))
                seen.append(chapter);
            gems.append(seen.indexOf(chapter));
        }
        list.append(QVariantMap{{QStringLiteral("name"), displayed(act.name)},
                                {QStringLiteral("chapters"), chapters},
                                {QStringLiteral("gems"), gems}});
    }
    return list;
}

QVariantList DonePageModel::stats() const {
    const auto* story = results();
    if (story == nullptr)
        return {};
    return {tile("film", "Segments", std::to_string(story->segments.size())),
            tile("text.bubble", "Subtitles", std::to_string(story->subtitles.size())),
            tile("clock", "Duration", formatDuration(story->estimatedDuration)),
            tile("list.number", "Acts", std::to_string(story->structure.acts.size()))};
}

double DonePageModel::sourceHours() const {
    if (m_flow.isNull())
        return 0.0;
    double seconds = 0.0;
    for (const auto& [name, probe] : m_flow->pipeline()->probeResults())
        seconds += probe.duration;
    return seconds / secondsOfAnHour;
}

double DonePageModel::savedHours() const {
    return sourceHours() * manualHoursPerHour;
}

bool DonePageModel::hasSavedTime() const {
    return savedHours() > leastSavedHours;
}

QString DonePageModel::savedTime() const {
    const auto hours = savedHours();
    if (hours >= 1.0)
        return displayed("~" + std::to_string(rounded(hours)) + " hours");
    return displayed("~" + std::to_string(rounded(hours * minutesOfAnHour)) + " minutes");
}

QString DonePageModel::savedTimeBasis() const {
    return displayed(fixedText(sourceHours(), 1) + " hrs source × 8 hrs/hr industry avg");
}

QString DonePageModel::buildText() const {
    return m_isBuilding ? QStringLiteral("Building in Resolve...") : QStringLiteral("Build Timeline in Resolve");
}

bool DonePageModel::isBuildStatusBad() const {
    return m_buildStatus.contains(QStringLiteral("✗"));
}

bool DonePageModel::isMagicMode() const {
    return !m_flow.isNull() && m_flow->isMagicMode();
}

QString DonePageModel::magicExplanation() {
    return QStringLiteral("Campfire-style · slow build · intimate tone — because the subject speaks reflectively about "
                          "family and tradition");
}

QVariantList DonePageModel::plainExports() {
    QVariantList list;
    for (const auto& row : plainExportRows)
        list.append(QVariantMap{{QStringLiteral("symbol"), QString::fromUtf8(row.symbol)},
                                {QStringLiteral("label"), QString::fromUtf8(row.label)}});
    return list;
}

QVariantList DonePageModel::storyExports() {
    QVariantList list;
    for (const auto& row : storyExportRows)
        list.append(QVariantMap{{QStringLiteral("symbol"), QString::fromUtf8(row.symbol)},
                                {QStringLiteral("label"), QString::fromUtf8(row.label)},
                                {QStringLiteral("line"), QString::fromUtf8(row.line)}});
    return list;
}

QVariantList DonePageModel::ratings() const {
    QVariantList list;
    for (const auto& row : ratingRows) {
        const bool isChosen = !m_flow.isNull() && m_flow->rating() == row.rating;
        list.append(QVariantMap{{QStringLiteral("label"), QString::fromUtf8(row.label)},
                                {QStringLiteral("symbol"), QString::fromUtf8(isChosen ? row.chosenSymbol : row.symbol)},
                                {QStringLiteral("isChosen"), isChosen},
                                {QStringLiteral("isGood"), row.rating == 1}});
    }
    return list;
}

int DonePageModel::shownChips(const QVariantList& widths, double room, double spacing, double restWidth) {
    std::vector<double> numbers;
    for (const auto& width : widths)
        numbers.push_back(width.toDouble());
    return chipsThatFit(numbers, room, spacing, restWidth, chipRows);
}

void DonePageModel::build() {
    if (m_isBuilding || m_flow.isNull())
        return;
    setBuildState(true, {});
    m_flow->buildTimeline();
}

void DonePageModel::takeBuildResult() {
    if (m_flow.isNull())
        return;
    if (const auto& result = m_flow->pipeline()->buildResult())
        setBuildState(false, displayed(*result));
}

void DonePageModel::setBuildState(bool isBuilding, const QString& status) {
    if (m_isBuilding == isBuilding && m_buildStatus == status)
        return;
    m_isBuilding = isBuilding;
    m_buildStatus = status;
    Q_EMIT buildChanged();
}

void DonePageModel::takeVersions() {
    m_versions.clear();
    if (!m_flow.isNull()) {
        const bool isStorySaved = !m_flow->isUnsaved(newestStory);
        auto found = m_flow->pipeline()->listMineVersions();
        // The old story was put aside for a new one that then could not be written. It is no version of its own.
        if (!isStorySaved && !found.empty() && isCopyOfNewest(*m_flow->pipeline(), found.back()))
            found.pop_back();
        for (const auto& version : found)
            m_versions.append(
                QVariantMap{{QStringLiteral("version"), displayed("v" + std::to_string(version.version))},
                            {QStringLiteral("segments"), displayed(std::to_string(version.segments) + " segments")},
                            {QStringLiteral("date"), dateText(version.date)},
                            {QStringLiteral("isCurrent"), isStorySaved && &version == &found.back()}});
    }
    Q_EMIT versionsChanged();
}

void DonePageModel::open(const std::string& path) {
    if (!m_flow->desktop()->openFile(path))
        setBuildState(m_isBuilding, displayed("✗ " + lastPathComponent(path) + " could not be opened"));
}

void DonePageModel::openExport(int index) {
    const auto* row = rowAt(plainExportRows, index);
    if (row == nullptr || m_flow.isNull() || !m_flow->pipeline()->lastExportDir())
        return;
    // An older story's file may still be there.
    if (m_flow->isUnsaved(row->file))
        setBuildState(m_isBuilding, displayed(std::string("✗ ") + row->file + " of this mine could not be saved"));
    else
        open(*m_flow->pipeline()->lastExportDir() + "/" + row->file);
}

void DonePageModel::openExportFolder() {
    if (!m_flow.isNull() && m_flow->pipeline()->lastExportDir())
        open(*m_flow->pipeline()->lastExportDir());
}

void DonePageModel::exportStory(int index) {
    const auto* row = rowAt(storyExportRows, index);
    const auto* story = results();
    if (row == nullptr || story == nullptr || !m_flow->pipeline()->lastExportDir())
        return;
    const auto& pipeline = *m_flow->pipeline();
    const auto media = generateMediaFileInfo(pipeline.lastMediaPaths(), pipeline.probeResults(), story->segments);
    const auto path = *pipeline.lastExportDir() + "/" + std::string(exportFileName(row->format));
    if (const auto failure = zuvo::exportStory(row->format, path, *story, media)) {
        setBuildState(m_isBuilding, displayed(row->failure + failure.message()));
        return;
    }
    if (!m_flow->desktop()->reveal(path))
        setBuildState(m_isBuilding, displayed("✗ " + lastPathComponent(path) + " could not be shown"));
}

void DonePageModel::rate(int index) {
    const auto* row = rowAt(ratingRows, index);
    if (row != nullptr && !m_flow.isNull())
        m_flow->setRating(row->rating);
}

} // namespace zuvo
