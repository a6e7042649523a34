#pragma once

#include "ui/AudioPlayer.h"
#include "ui/SoundOutput.h"

#include <QObject>
#include <string>

namespace zuvo {

/// Players on the desktop's own sound, of every file that ffmpeg can decode. The first sample heard is that of the
/// place asked for.
class QtAudioPlayers final : public AudioPlayers {
public:
    explicit QtAudioPlayers(std::string ffmpeg, SoundOutputs outputs = desktopSoundOutput);

    [[nodiscard]] std::unique_ptr<AudioPlayer> open(const std::string& path, std::function<void()> failed) override;
    void readDurations(std::vector<std::string> paths,
                       std::function<void(std::vector<std::optional<double>>)> done) override;

private:
    std::string m_ffmpeg;
    SoundOutputs m_outputs;
    QObject m_readers; ///< owns what reads lengths
};

/// Timers of the event loop.
class QtPlaybackTimers final : public PlaybackTimers {
public:
    [[nodiscard]] std::unique_ptr<Timer> every(double seconds, std::function<void()> call) override;
    [[nodiscard]] std::unique_ptr<Timer> after(double seconds, std::function<void()> call) override;
};

} // namespace zuvo
