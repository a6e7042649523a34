#pragma once

#include "platform/SoundDecoding.h"

#include <QByteArray>
#include <functional>
#include <memory>

namespace zuvo {

/// Where the sound of one playback goes. What is not written is not heard: a playback is silent until the sound of the
/// place asked for has been decoded.
class SoundOutput {
public:
    virtual ~SoundOutput() = default;
    SoundOutput() = default;
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    [[nodiscard]] virtual SoundFormat format() const = 0;

    /// Before the first write. Whether it went well is told by `hasFailed`.
    virtual void begin() = 0;
    /// Bytes that it takes now.
    [[nodiscard]] virtual qsizetype room() const = 0;
    /// Whole frames, not more than there is room for.
    virtual void write(const QByteArray& frames) = 0;

    /// Seconds of what was written that have been heard.
    [[nodiscard]] virtual double playedSeconds() const = 0;
    /// The device cannot be opened, or has gone.
    [[nodiscard]] virtual bool hasFailed() const = 0;
};

using SoundOutputs = std::function<std::unique_ptr<SoundOutput>()>;

/// The desktop's default device for sound. On a machine without one the sound passes unheard, in its own time.
[[nodiscard]] std::unique_ptr<SoundOutput> desktopSoundOutput();

/// Takes the sound in its own time and drops it.
[[nodiscard]] std::unique_ptr<SoundOutput> unheardSoundOutput();

} // namespace zuvo
