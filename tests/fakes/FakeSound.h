#pragma once

#include "ui/AudioPlayer.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zuvo::tests {

/// Players without sound and timers without time: both go on only when the test lets time pass.
class FakeSound {
public:
    struct Playing {
        std::string path;
        double position = 0.0;
        bool isRunning = false;
        std::function<void()> failed;
    };

    /// A file that can be opened, and its length in seconds.
    void givenFile(const std::string& path, double duration) { m_durations[path] = duration; }
    /// Lengths are told only at `tellDurations`.
    void holdDurations() { m_holdsDurations = true; }
    void tellDurations() {
        for (const auto& tell : std::exchange(m_heldDurations, {}))
            tell();
    }

    [[nodiscard]] std::shared_ptr<AudioPlayers> players() { return std::make_shared<Players>(this); }
    [[nodiscard]] std::shared_ptr<PlaybackTimers> timers() { return std::make_shared<Timers>(this); }

    /// What is playing, if anything is.
    [[nodiscard]] const Playing* playing() const { return m_players.empty() ? nullptr : m_players.front(); }
    [[nodiscard]] std::size_t playerCount() const { return m_players.size(); }
    [[nodiscard]] std::size_t timerCount() const { return m_timers.size(); }
    /// Path and position in seconds of every start.
    std::vector<std::pair<std::string, double>> starts;
    int durationQuestions = 0;

    /// The file that plays turns out not to be playable.
    void fail() {
        const auto failed = m_players.at(0)->failed;
        failed();
    }

    /// Lets time pass: players go on and timers call in the order of their times.
    void pass(double seconds) {
        const auto end = m_now + seconds;
        while (auto* next = nextTimer(end)) {
            advanceTo(next->due);
            if (next->repeats)
                next->due += next->interval;
            else
                next->isOver = true;
            const auto call = next->call;
            call();
        }
        advanceTo(end);
    }

private:
    struct Entry {
        double due = 0.0;
        double interval = 0.0;
        bool repeats = false;
        bool isOver = false;
        std::function<void()> call;
    };

    class Player final : public AudioPlayer {
    public:
        Player(FakeSound* sound, Playing playing) : m_sound(sound), m_playing(std::move(playing)) {
            m_sound->m_players.push_back(&m_playing);
        }
        ~Player() override { std::erase(m_sound->m_players, &m_playing); }
        void setCurrentTime(double seconds) override { m_playing.position = seconds; }
        void play() override {
            m_playing.isRunning = true;
            m_sound->starts.emplace_back(m_playing.path, m_playing.position);
        }
        void stop() override { m_playing.isRunning = false; }
        [[nodiscard]] double currentTime() const override { return m_playing.position; }

    private:
        FakeSound* m_sound;
        Playing m_playing;
    };

    class Players final : public AudioPlayers {
    public:
        explicit Players(FakeSound* sound) : m_sound(sound) {}
        std::unique_ptr<AudioPlayer> open(const std::string& path, std::function<void()> failed) override {
            if (!m_sound->m_durations.contains(path))
                return nullptr;
            return std::make_unique<Player>(m_sound, Playing{path, 0.0, false, std::move(failed)});
        }
        void readDurations(std::vector<std::string> paths,
                           std::function<void(std::vector<std::optional<double>>)> done) override {
            ++m_sound->durationQuestions;
            std::vector<std::optional<double>> durations;
            for (const auto& path : paths) {
                const auto found = m_sound->m_durations.find(path);
                durations.push_back(found == m_sound->m_durations.end() ? std::nullopt : std::optional(found->second));
            }
            const auto tell = [done = std::move(done), durations] { done(durations); };
            if (m_sound->m_holdsDurations)
                m_sound->m_heldDurations.emplace_back(tell);
            else
                tell();
        }

    private:
        FakeSound* m_sound;
    };

    class Timer final : public PlaybackTimers::Timer {
    public:
        Timer(FakeSound* sound, Entry entry) : m_sound(sound), m_entry(std::move(entry)) {
            m_sound->m_timers.push_back(&m_entry);
        }
        ~Timer() override { std::erase(m_sound->m_timers, &m_entry); }

    private:
        FakeSound* m_sound;
        Entry m_entry;
    };

    class Timers final : public PlaybackTimers {
    public:
        explicit Timers(FakeSound* sound) : m_sound(sound) {}
        std::unique_ptr<PlaybackTimers::Timer> every(double seconds, std::function<void()> call) override {
            return make(seconds, true, std::move(call));
        }
        std::unique_ptr<PlaybackTimers::Timer> after(double seconds, std::function<void()> call) override {
            return make(std::max(seconds, 0.0), false, std::move(call));
        }

    private:
        std::unique_ptr<PlaybackTimers::Timer> make(double seconds, bool repeats, std::function<void()> call) {
            return std::make_unique<FakeSound::Timer>(
                m_sound, Entry{m_sound->m_now + seconds, seconds, repeats, false, std::move(call)});
        }
        FakeSound* m_sound;
    };

    Entry* nextTimer(double end) {
        Entry* next = nullptr;
        for (auto* timer : m_timers) {
            if (!timer->isOver && timer->due <= end && (next == nullptr || timer->due < next->due))
                next = timer;
        }
        return next;
    }
    void advanceTo(double now) {
        for (auto* player : m_players) {
            if (player->isRunning)
                player->position += now - m_now;
        }
        m_now = now;
    }

    double m_now = 0.0;
    std::map<std::string, double> m_durations;
    bool m_holdsDurations = false;
    std::vector<std::function<void()>> m_heldDurations;
    std::vector<Playing*> m_players;
    std::vector<Entry*> m_timers;
};

} // namespace zuvo::tests
