#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zuvo {

/// Plays one file. Ends with its destruction.
class AudioPlayer {
public:
    virtual ~AudioPlayer() = default;
    AudioPlayer() = default;
    AudioPlayer(const AudioPlayer&) = delete;
    AudioPlayer& operator=(const AudioPlayer&) = delete;

    /// Seconds from the file's first sample. Before `play`.
    virtual void setCurrentTime(double seconds) = 0;
    virtual void play() = 0;
    virtual void stop() = 0;

    /// Where it stands, in seconds from the file's first sample.
    [[nodiscard]] virtual double currentTime() const = 0;
};

/// Opens files to be heard.
class AudioPlayers {
public:
    virtual ~AudioPlayers() = default;
    AudioPlayers() = default;
    AudioPlayers(const AudioPlayers&) = delete;
    AudioPlayers& operator=(const AudioPlayers&) = delete;

    /// Nothing if the file cannot be opened. Whether it can be played may turn out later: then `failed` is called, from
    /// the event loop, as long as the player lives.
    [[nodiscard]] virtual std::unique_ptr<AudioPlayer> open(const std::string& path, std::function<void()> failed) = 0;

    /// The lengths of the files in seconds, in their order; nothing for one that cannot be opened. `done` is called
    /// once, at once or from the event loop, unless these players are destroyed before.
    virtual void readDurations(std::vector<std::string> paths,
                               std::function<void(std::vector<std::optional<double>>)> done) = 0;
};

/// Calls from the event loop.
class PlaybackTimers {
public:
    /// Stops with its destruction.
    class Timer {
    public:
        virtual ~Timer() = default;
        Timer() = default;
        Timer(const Timer&) = delete;
        Timer& operator=(const Timer&) = delete;
    };

    virtual ~PlaybackTimers() = default;
    PlaybackTimers() = default;
    PlaybackTimers(const PlaybackTimers&) = delete;
    PlaybackTimers& operator=(const PlaybackTimers&) = delete;

    /// Calls again and again, after that many seconds each.
    [[nodiscard]] virtual std::unique_ptr<Timer> every(double seconds, std::function<void()> call) = 0;
    /// Calls once after that many seconds, at once if they are not above 0. The call may destroy the timer.
    [[nodiscard]] virtual std::unique_ptr<Timer> after(double seconds, std::function<void()> call) = 0;
};

} // namespace zuvo
