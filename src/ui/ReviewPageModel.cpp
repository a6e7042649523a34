#include "ui/ReviewPageModel.h"

#include "ui/QtAudioPlayer.h"
#include "ui/ReviewTexts.h"

#include <QStringList>
#include <algorithm>
#include <utility>

namespace zuvo {

namespace {

constexpr double progressInterval = 1.0 / 30.0; ///< seconds

void call(const std::function<void()>& callback) {
    if (callback)
        callback();
}

} // namespace

ReviewPageModel::ReviewPageModel(QObject* parent)
    : ReviewPageModel({nullptr, std::make_shared<QtPlaybackTimers>(), {}, {}, {}}, parent) {}

ReviewPageModel::ReviewPageModel(ReviewWorld world, QObject* parent)
    : QObject(parent),
      m_world(std::move(world)),
      m_cards(new SegmentCards(this)),
      m_echo(new EchoLines(this)),
      m_map(new StoryMapModel(m_cards, this)),
      m_captionWords(new RowListModel({QByteArrayLiteral("word"), QByteArrayLiteral("place")}, this)) {}

ReviewPageModel::~ReviewPageModel() {
    leave();
}

void ReviewPageModel::setFlow(MineViewModel* flow) {
    if (flow == m_flow || flow == nullptr)
        return;
    m_flow = flow;
    const auto& platform = flow->pipeline()->platform();
    m_world.clock = platform.clock;
    m_world.home = platform.environment.home;
    m_world.cacheFolder = platform.environment.cacheFolder();
    if (!m_world.players)
        m_world.players = std::make_shared<QtAudioPlayers>(platform.environment.tools.ffmpeg);
    const QPointer<MineViewModel> held(flow);
    m_callbacks.onSendToResolve = [held](std::vector<StorySegment> segments) {
        if (held)
            held->sendToResolve(std::move(segments));
    };
    m_callbacks.onReanalyze = [held] {
        if (held)
            held->reanalyze();
    };
    m_callbacks.onSkipToExport = [held] {
        if (held)
            held->skipToExport();
    };
    connect(flow, &MineViewModel::pageNameChanged, this, [this] {
        if (m_flow && m_flow->pageName() != QStringLiteral("ReviewPage"))
            leave();
    });
    Q_EMIT flowChanged();
    show(flow->reviewSegments(), flow->mediaPaths(), flow->fullTranscript());
}

void ReviewPageModel::setSound(std::shared_ptr<AudioPlayers> players, std::shared_ptr<PlaybackTimers> timers) {
    stopPlayback();
    m_world.players = std::move(players);
    m_world.timers = std::move(timers);
}

void ReviewPageModel::show(std::vector<StorySegment> initialSegments, std::vector<std::string> mediaPaths,
                           std::vector<TranscriptSegment> fullTranscript) {
    m_mediaPaths = std::move(mediaPaths);
    m_hasTranscript = !fullTranscript.empty();
    m_cards->setSegments(std::move(initialSegments));
    m_echo->setTranscript(std::move(fullTranscript));
    if (auto words = loadWordTimestamps(m_world.cacheFolder))
        m_wordTimestampsCache = *std::move(words);
    Q_EMIT shown();
    Q_EMIT summaryChanged();
}

void ReviewPageModel::leave() {
    stopPlayback();
    saveReviewActions(m_world.home, std::exchange(m_reviewActions, {}));
}

QString ReviewPageModel::summary() const {
    return QStringLiteral("%1 gems  %2").arg(segments().size()).arg(review::formatTime(totalDuration(segments())));
}

void ReviewPageModel::setShowTranscript(bool shows) {
    if (std::exchange(m_showTranscript, shows) != shows)
        Q_EMIT viewChanged();
}

void ReviewPageModel::setViewMode(ReviewViewMode mode) {
    if (std::exchange(m_viewMode, mode) != mode)
        Q_EMIT viewChanged();
}

void ReviewPageModel::setTranscriptSearch(const QString& search) {
    if (search == m_transcriptSearch)
        return;
    m_transcriptSearch = search;
    m_echo->setSearch(search);
    Q_EMIT searchChanged();
}

QString ReviewPageModel::matchesText() const {
    if (m_transcriptSearch.isEmpty())
        return {};
    const auto count = m_echo->rowCount();
    return QString::number(count) + QStringLiteral(" match") + (count == 1 ? QString() : QStringLiteral("es"));
}

double ReviewPageModel::captionProgress() const {
    const auto segment = segmentOf(m_playingSegment);
    if (!segment)
        return 0.0;
    const auto length = segment->endTime - segment->startTime;
    return length > 0.0 ? std::clamp(m_currentPlaybackTime / length, 0.0, 1.0) : 0.0;
}

void ReviewPageModel::toggleExpanded(qint64 id) {
    m_expandedSegment = m_expandedSegment == id ? std::nullopt : std::optional<std::int64_t>(id);
    m_cards->setExpanded(m_expandedSegment);
}

void ReviewPageModel::togglePlay(qint64 id) {
    const bool stops = m_playingSegment == id;
    stopPlayback();
    const auto segment = segmentOf(id);
    if (stops || !segment)
        return;
    setPlayingSegment(id);
    play({segment->startTime, segment->endTime});
}

void ReviewPageModel::playTranscriptSegment(int row) {
    const auto* line = m_echo->line(row);
    if (line == nullptr)
        return;
    const Span span{line->start, line->end};
    stopPlayback();
    play(span);
}

void ReviewPageModel::stopPlayback() {
    ++m_playbackCount;
    if (m_audioPlayer)
        m_audioPlayer->stop();
    m_audioPlayer.reset();
    m_playbackTimer.reset();
    m_playbackProgressTimer.reset();
    setPlayingSegment(std::nullopt);
    setCurrentPlaybackTime(0.0);
}

void ReviewPageModel::setPlayingSegment(std::optional<std::int64_t> id) {
    if (id == m_playingSegment)
        return;
    m_playingSegment = id;
    m_cards->setPlaying(id);
    updateCaption();
}

void ReviewPageModel::buildOffsetMap(std::function<void(const Places&)> then) {
    auto places = placesFromProbe(m_world.cacheFolder, m_mediaPaths);
    if (!places.empty() || m_mediaPaths.empty()) {
        then(places);
        return;
    }
    auto paths = sortedByName(m_mediaPaths);
    m_world.players->readDurations(paths, [self = QPointer(this), count = m_playbackCount, paths,
                                           then = std::move(then)](std::vector<std::optional<double>> durations) {
        if (!self || self->m_playbackCount != count)
            return;
        std::vector<MediaLength> files;
        for (std::size_t i = 0; i < std::min(paths.size(), durations.size()); ++i) {
            if (durations[i])
                files.push_back({paths[i], *durations[i]});
        }
        then(laidEndToEnd(files));
    });
}

void ReviewPageModel::play(Span span) {
    buildOffsetMap([this, span](const Places& places) { playFrom(span, places); });
}

void ReviewPageModel::playFrom(Span span, const Places& places) {
    const auto place = placeOf(span.startTime, places);
    if (!place) {
        setPlayingSegment(std::nullopt);
        return;
    }
    m_playbackSegmentStart = place->seconds;
    m_audioPlayer = m_world.players->open(place->path, [this] { stopPlayback(); });
    if (!m_audioPlayer) {
        setPlayingSegment(std::nullopt);
        return;
    }
    m_audioPlayer->setCurrentTime(place->seconds);
    m_audioPlayer->play();
    m_playbackProgressTimer = m_world.timers->every(progressInterval, [this] { followPlayback(); });
    m_playbackTimer = m_world.timers->after(span.endTime - span.startTime, [this] { stopPlayback(); });
}

void ReviewPageModel::followPlayback() {
    if (m_audioPlayer)
        setCurrentPlaybackTime(m_audioPlayer->currentTime() - m_playbackSegmentStart);
}

void ReviewPageModel::setCurrentPlaybackTime(double seconds) {
    if (seconds < m_currentPlaybackTime || seconds > m_currentPlaybackTime) {
        m_currentPlaybackTime = seconds;
        Q_EMIT playbackTimeChanged();
        updateCaption();
    }
}

void ReviewPageModel::updateCaption() {
    std::vector<ListRow> inSight;
    QStringList texts;
    const auto found = m_playingSegment ? m_wordTimestampsCache.find(*m_playingSegment) : m_wordTimestampsCache.end();
    if (found != m_wordTimestampsCache.end()) {
        const auto& words = found->second;
        const auto active = activeIndex(words, m_currentPlaybackTime);
        const auto range = visibleRange(words.size(), active);
        for (auto i = range.start; i < range.end; ++i) {
            const int place = !active || i > *active ? 1 : i == *active ? 0 : -1;
            texts.append(QString::fromStdString(words[i].word));
            inSight.push_back({QString::number(i), {texts.back(), place}});
        }
    }
    m_captionWords->setRows(std::move(inSight));
    auto text = texts.join(QLatin1Char(' '));
    if (text == m_captionText)
        return;
    m_captionText = std::move(text);
    Q_EMIT captionChanged();
}

void ReviewPageModel::deleteSegment(int at) {
    if (at < 0 || at >= m_cards->rowCount())
        return;
    const auto row = static_cast<std::size_t>(at);
    const auto& segment = segments()[row];
    m_reviewActions.push_back(deletion(segment, row, secondsSince1970(m_world.clock())));
    if (m_playingSegment == segment.id())
        stopPlayback();
    m_cards->remove(row);
    Q_EMIT summaryChanged();
}

void ReviewPageModel::beginDrag(qint64 id) {
    m_draggingSegment = segmentOf(id);
}

void ReviewPageModel::dropEntered(qint64 id) {
    if (auto item = segmentOf(id))
        dropDelegateOf(*std::move(item)).dropEntered();
}

bool ReviewPageModel::performDrop() {
    return !m_draggingSegment || dropDelegateOf(*m_draggingSegment).performDrop();
}

int ReviewPageModel::moveSegment(int row, int step) {
    const int to = row + step;
    const int count = m_cards->rowCount();
    if (row < 0 || row >= count || to < 0 || to >= count || to == row)
        return row;
    reorderSegments(*m_cards, static_cast<std::size_t>(row), static_cast<std::size_t>(to), m_reviewActions,
                    m_world.clock);
    return to;
}

SegmentDropDelegate ReviewPageModel::dropDelegateOf(StorySegment item) {
    return {std::move(item), *m_cards, m_draggingSegment, m_reviewActions, m_world.clock};
}

void ReviewPageModel::sendToResolve() {
    stopPlayback();
    if (m_callbacks.onSendToResolve)
        m_callbacks.onSendToResolve(segments());
}

void ReviewPageModel::reanalyze() {
    stopPlayback();
    call(m_callbacks.onReanalyze);
}

void ReviewPageModel::skipToExport() {
    stopPlayback();
    call(m_callbacks.onSkipToExport);
}

std::optional<StorySegment> ReviewPageModel::segmentOf(std::optional<std::int64_t> id) const {
    const auto row = id ? m_cards->rowOf(*id) : std::nullopt;
    return row ? std::optional(segments()[*row]) : std::nullopt;
}

} // namespace zuvo
