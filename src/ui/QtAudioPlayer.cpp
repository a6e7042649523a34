#include "ui/QtAudioPlayer.h"

#include "base/Numbers.h"
#include "platform/SoundDecoding.h"
#include "ui/PlaybackClock.h"

#include <QAudioOutput>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMediaPlayer>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <utility>

namespace zuvo {

namespace {

constexpr double millisecondsPerSecond = 1000.0;
constexpr double nanosecondsPerSecond = 1e9;

/// A file whose length is not known by then counts as one that cannot be opened.
constexpr std::chrono::seconds lengthLimit{5};

QString textOf(const std::string& text) {
    return QString::fromStdString(text);
}

/// How often the output is filled up and asked how far it is. Well below what it holds ahead.
constexpr std::chrono::milliseconds feedInterval{20};

class QtAudioPlayer final : public QObject, public AudioPlayer {
public:
    QtAudioPlayer(std::string path, const std::string& ffmpeg, std::unique_ptr<SoundOutput> output,
                  std::function<void()> failed)
        : m_path(std::move(path)), m_failed(std::move(failed)), m_output(std::move(output)), m_decoding(ffmpeg) {
        connect(&m_decoding, &SoundDecoding::arrived, this, &QtAudioPlayer::feed);
        connect(&m_decoding, &SoundDecoding::failed, this, &QtAudioPlayer::tellOfFailure);
        connect(&m_feedTimer, &QTimer::timeout, this, &QtAudioPlayer::feed);
        m_time.start();
    }

    void setCurrentTime(double seconds) override { m_start = seconds; }

    void play() override {
        m_decoding.start(m_path, m_start, m_output->format());
        m_feedTimer.setTimerType(Qt::PreciseTimer);
        m_feedTimer.start(feedInterval);
    }

    void stop() override {
        m_feedTimer.stop();
        m_decoding.disconnect(this);
        m_output.reset();
    }

    [[nodiscard]] double currentTime() const override { return m_start + m_clock.at(now()); }

private:
    void feed() {
        if (!m_output || (!m_hasBegun && m_decoding.waiting() == 0))
            return;
        if (!std::exchange(m_hasBegun, true))
            m_output->begin();
        if (m_output->hasFailed()) {
            stop();
            tellOfFailure();
            return;
        }
        const auto frame = m_output->format().bytesPerFrame();
        const auto room = std::min(m_output->room(), m_decoding.waiting());
        if (room >= frame)
            m_output->write(m_decoding.take(room - room % frame));
        m_clock.report(m_output->playedSeconds(), now());
    }

    void tellOfFailure() {
        // Whoever hears of it destroys this player, which must not happen within its own signal.
        QMetaObject::invokeMethod(
            this, [failed = m_failed] { failed(); }, Qt::QueuedConnection);
    }

    [[nodiscard]] double now() const { return static_cast<double>(m_time.nsecsElapsed()) / nanosecondsPerSecond; }

    std::string m_path;
    std::function<void()> m_failed;
    double m_start = 0.0; ///< seconds from the file's first sample
    bool m_hasBegun = false;
    PlaybackClock m_clock;
    QElapsedTimer m_time;
    QTimer m_feedTimer;
    std::unique_ptr<SoundOutput> m_output; ///< none once stopped
    SoundDecoding m_decoding;
};

/// Opens one file after the other for its length.
class DurationReader final : public QObject {
public:
    using Done = std::function<void(std::vector<std::optional<double>>)>;

    DurationReader(std::vector<std::string> paths, Done done, QObject* parent)
        : QObject(parent), m_paths(std::move(paths)), m_done(std::move(done)) {
        m_limit.setSingleShot(true);
        connect(&m_limit, &QTimer::timeout, this, [this] { learn(std::nullopt); });
        later();
    }

private:
    void later() {
        QMetaObject::invokeMethod(
            this, [this] { next(); }, Qt::QueuedConnection);
    }

    void next() {
        m_isOpening = false;
        if (m_durations.size() == m_paths.size()) {
            deleteLater();
            m_done(std::move(m_durations));
            return;
        }
        m_isOpening = true;
        m_limit.start(lengthLimit);
        const auto path = textOf(m_paths[m_durations.size()]);
        if (QFileInfo(path).isFile())
            openFile(path);
        else
            learn(std::nullopt);
    }

    void openFile(const QString& path) {
        // One for each file: a file that cannot be opened spoils the player for the next one.
        m_player = std::make_unique<QMediaPlayer>();
        m_player->setAudioOutput(&m_output); // without one a stream of sound fails
        // The length, not the loaded state: which of the two comes first is not settled.
        connect(m_player.get(), &QMediaPlayer::durationChanged, this, [this](qint64 duration) {
            if (duration > 0)
                learn(static_cast<double>(duration) / millisecondsPerSecond);
        });
        connect(m_player.get(), &QMediaPlayer::mediaStatusChanged, this, [this](QMediaPlayer::MediaStatus status) {
            if (status == QMediaPlayer::InvalidMedia)
                learn(std::nullopt);
        });
        m_player->setSource(QUrl::fromLocalFile(path));
    }

    void learn(std::optional<double> seconds) {
        if (!std::exchange(m_isOpening, false))
            return;
        m_limit.stop();
        m_durations.push_back(seconds);
        later();
    }

    std::vector<std::string> m_paths;
    std::vector<std::optional<double>> m_durations;
    Done m_done;
    bool m_isOpening = false;
    QTimer m_limit;
    QAudioOutput m_output; ///< nothing is heard: nothing plays
    std::unique_ptr<QMediaPlayer> m_player;
};

class QtTimer final : public PlaybackTimers::Timer {
public:
    QtTimer(double seconds, bool repeats, std::function<void()> call) {
        m_timer->setTimerType(Qt::PreciseTimer);
        m_timer->setSingleShot(!repeats);
        QObject::connect(m_timer, &QTimer::timeout, m_timer, std::move(call));
        const auto milliseconds = truncated(std::max(seconds, 0.0) * millisecondsPerSecond);
        m_timer->start(static_cast<int>(std::min<std::int64_t>(milliseconds, std::numeric_limits<int>::max())));
    }
    ~QtTimer() override {
        m_timer->stop();
        m_timer->deleteLater(); // it may be in the midst of its own call
    }

private:
    QTimer* m_timer = new QTimer; ///< deleted by the event loop
};

} // namespace

QtAudioPlayers::QtAudioPlayers(std::string ffmpeg, SoundOutputs outputs)
    : m_ffmpeg(std::move(ffmpeg)), m_outputs(std::move(outputs)) {}

std::unique_ptr<AudioPlayer> QtAudioPlayers::open(const std::string& path, std::function<void()> failed) {
    if (!QFileInfo(textOf(path)).isFile())
        return nullptr;
    return std::make_unique<QtAudioPlayer>(path, m_ffmpeg, m_outputs(), std::move(failed));
}

void QtAudioPlayers::readDurations(std::vector<std::string> paths,
                                   std::function<void(std::vector<std::optional<double>>)> done) {
    new DurationReader(std::move(paths), std::move(done), &m_readers); // deletes itself when it is done
}

std::unique_ptr<PlaybackTimers::Timer> QtPlaybackTimers::every(double seconds, std::function<void()> call) {
    return std::make_unique<QtTimer>(seconds, true, std::move(call));
}

std::unique_ptr<PlaybackTimers::Timer> QtPlaybackTimers::after(double seconds, std::function<void()> call) {
    return std::make_unique<QtTimer>(seconds, false, std::move(call));
}

} // namespace zuvo
