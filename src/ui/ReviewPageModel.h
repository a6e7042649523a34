#pragma once

#include "platform/Clock.h"
#include "ui/AudioPlayer.h"
#include "ui/EchoLines.h"
#include "ui/LiveCaption.h"
#include "ui/MediaPlaces.h"
#include "ui/MineViewModel.h"
#include "ui/ReviewAction.h"
#include "ui/RowListModel.h"
#include "ui/SegmentCards.h"
#include "ui/SegmentDropDelegate.h"
#include "ui/StoryMapModel.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <qqmlregistration.h>
#include <string>
#include <vector>

namespace zuvo {

/// What the page works with.
struct ReviewWorld {
    std::shared_ptr<AudioPlayers> players; ///< none: those of the desktop, once the page has its flow
    std::shared_ptr<PlaybackTimers> timers;
    Clock clock;
    std::string home;        ///< no "/" at its end
    std::string cacheFolder; ///< no "/" at its end
};

/// What the page calls back.
struct ReviewCallbacks {
    std::function<void(std::vector<StorySegment>)> onSendToResolve;
    std::function<void()> onReanalyze;
    std::function<void()> onSkipToExport;
};

/// The page on which the user hears, reads, removes and reorders what was found. Its edits stay with it until they are
/// sent; the log of edits is written when the page is left.
class ReviewPageModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zuvo::MineViewModel* flow READ flow WRITE setFlow NOTIFY flowChanged)
    Q_PROPERTY(zuvo::SegmentCards* cards READ cards CONSTANT)
    Q_PROPERTY(zuvo::EchoLines* echo READ echo CONSTANT)
    Q_PROPERTY(zuvo::StoryMapModel* map READ map CONSTANT)
    Q_PROPERTY(QString summary READ summary NOTIFY summaryChanged)
    Q_PROPERTY(bool hasTranscript READ hasTranscript NOTIFY shown)
    Q_PROPERTY(bool showTranscript READ showTranscript WRITE setShowTranscript NOTIFY viewChanged)
    Q_PROPERTY(ReviewViewMode viewMode READ viewMode WRITE setViewMode NOTIFY viewChanged)
    Q_PROPERTY(QString transcriptSearch READ transcriptSearch WRITE setTranscriptSearch NOTIFY searchChanged)
    Q_PROPERTY(QString matchesText READ matchesText NOTIFY searchChanged)
    Q_PROPERTY(double currentPlaybackTime READ currentPlaybackTime NOTIFY playbackTimeChanged)
    Q_PROPERTY(double captionProgress READ captionProgress NOTIFY playbackTimeChanged)
    Q_PROPERTY(zuvo::RowListModel* captionWords READ captionWords CONSTANT)
    Q_PROPERTY(QString captionText READ captionText NOTIFY captionChanged)
public:
    enum class ReviewViewMode { list, map };
    Q_ENUM(ReviewViewMode)

    /// In the world of its flow, without which nothing is shown, on the desktop's own sound.
    explicit ReviewPageModel(QObject* parent = nullptr);
    explicit ReviewPageModel(ReviewWorld world, QObject* parent = nullptr);
    ~ReviewPageModel() override;

    [[nodiscard]] MineViewModel* flow() const { return m_flow; }
    /// Shows the flow's story, and leaves when the flow goes to another page.
    void setFlow(MineViewModel* flow);
    void setCallbacks(ReviewCallbacks callbacks) { m_callbacks = std::move(callbacks); }
    void setSound(std::shared_ptr<AudioPlayers> players, std::shared_ptr<PlaybackTimers> timers);

    /// The page has come on screen.
    void show(std::vector<StorySegment> initialSegments, std::vector<std::string> mediaPaths,
              std::vector<TranscriptSegment> fullTranscript);
    /// The page leaves the screen: playback ends and the log of edits is written. Once a showing.
    Q_INVOKABLE void leave();

    [[nodiscard]] SegmentCards* cards() const { return m_cards; }
    [[nodiscard]] EchoLines* echo() const { return m_echo; }
    [[nodiscard]] StoryMapModel* map() const { return m_map; }

    [[nodiscard]] const std::vector<StorySegment>& segments() const { return m_cards->segments(); }
    [[nodiscard]] std::optional<std::int64_t> expandedSegment() const { return m_expandedSegment; }
    [[nodiscard]] std::optional<std::int64_t> playingSegment() const { return m_playingSegment; }
    [[nodiscard]] bool hasPlayer() const { return m_audioPlayer != nullptr; }
    [[nodiscard]] const std::vector<ReviewAction>& reviewActions() const { return m_reviewActions; }

    [[nodiscard]] QString summary() const; ///< "11 gems  4:51"
    [[nodiscard]] bool hasTranscript() const { return m_hasTranscript; }
    [[nodiscard]] bool showTranscript() const { return m_showTranscript; }
    void setShowTranscript(bool shows);
    [[nodiscard]] ReviewViewMode viewMode() const { return m_viewMode; }
    void setViewMode(ReviewViewMode mode);
    [[nodiscard]] QString transcriptSearch() const { return m_transcriptSearch; }
    void setTranscriptSearch(const QString& search);
    [[nodiscard]] QString matchesText() const; ///< "11 matches", empty without a search

    [[nodiscard]] double currentPlaybackTime() const { return m_currentPlaybackTime; } ///< seconds
    [[nodiscard]] double captionProgress() const; ///< of the playing segment's length, 0 to 1
    /// Of the playing segment, the words in sight: rows of `word` and `place`, below 0 for a word before the active
    /// one, 0 for it, above 0 behind it. Empty if nothing plays or it has no words. A word that stays in sight keeps
    /// its row.
    [[nodiscard]] RowListModel* captionWords() const { return m_captionWords; }
    [[nodiscard]] QString captionText() const { return m_captionText; } ///< the words in sight as one text

    // What the user does.

    Q_INVOKABLE void toggleExpanded(qint64 id);
    Q_INVOKABLE void togglePlay(qint64 id);
    Q_INVOKABLE void stopPlayback();
    /// Plays a line of `echo`, by its row; no card shows it.
    Q_INVOKABLE void playTranscriptSegment(int row);
    /// By its place in the list, from 0; out of the list nothing happens.
    Q_INVOKABLE void deleteSegment(int at);
    Q_INVOKABLE void beginDrag(qint64 id);
    /// The dragged card has come over the card of that id, whose place it takes.
    Q_INVOKABLE void dropEntered(qint64 id);
    Q_INVOKABLE bool performDrop();
    /// By the keyboard: one place up (-1) or down (1). Gives the card's row afterwards.
    Q_INVOKABLE int moveSegment(int row, int step);
    Q_INVOKABLE void sendToResolve();
    Q_INVOKABLE void reanalyze();
    Q_INVOKABLE void skipToExport();

Q_SIGNALS:
    void flowChanged();
    void shown();
    void summaryChanged();
    void viewChanged();
    void searchChanged();
    void playbackTimeChanged();
    void captionChanged();

private:
    struct Span {
        double startTime; ///< seconds in mine time
        double endTime;   ///< seconds in mine time
    };
    using Places = std::vector<MediaPlace>;

    void setPlayingSegment(std::optional<std::int64_t> id);
    /// Finds out which file holds which part, and calls with it, now or later; not if playback has been ended or begun
    /// anew by then.
    void buildOffsetMap(std::function<void(const Places&)> then);
    void play(Span span);
    void playFrom(Span span, const Places& places);
    void followPlayback();
    void setCurrentPlaybackTime(double seconds);
    void updateCaption();
    [[nodiscard]] SegmentDropDelegate dropDelegateOf(StorySegment item);
    [[nodiscard]] std::optional<StorySegment> segmentOf(std::optional<std::int64_t> id) const;

    ReviewWorld m_world;
    ReviewCallbacks m_callbacks;
    QPointer<MineViewModel> m_flow;
    SegmentCards* m_cards;
    EchoLines* m_echo;
    StoryMapModel* m_map;
    RowListModel* m_captionWords;

    std::vector<std::string> m_mediaPaths;
    std::optional<std::int64_t> m_expandedSegment;
    std::optional<std::int64_t> m_playingSegment;
    std::unique_ptr<AudioPlayer> m_audioPlayer;
    std::unique_ptr<PlaybackTimers::Timer> m_playbackTimer;
    std::unique_ptr<PlaybackTimers::Timer> m_playbackProgressTimer;
    std::optional<StorySegment> m_draggingSegment;
    bool m_hasTranscript = false;
    bool m_showTranscript = false;
    QString m_transcriptSearch;
    WordTimestampsCache m_wordTimestampsCache;
    double m_currentPlaybackTime = 0.0;
    double m_playbackSegmentStart = 0.0; ///< seconds from the file's first sample
    std::vector<ReviewAction> m_reviewActions;
    ReviewViewMode m_viewMode = ReviewViewMode::list;
    QString m_captionText;
    std::uint64_t m_playbackCount = 0; ///< tells a playback from those that have ended
};

} // namespace zuvo
