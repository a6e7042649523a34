#pragma once

#include <cstdint>
#include <string>

namespace zuvo {

/// A time as hours, minutes, seconds and frames, without drop frames. Nothing is rounded or carried: a time a hair
/// below a whole second lands on the frame before it, and adding loses what is less than a frame.
///
/// No time is refused: a negative one has negative fields, one beyond 64 bits stands at the end of the range, and what
/// is no number counts as 0.
struct Timecode {
    std::int64_t hours = 0;
    std::int64_t minutes = 0;
    std::int64_t seconds = 0;
    std::int64_t frames = 0;
    double fps = 24.0; ///< frames a second, by which `frames` is counted

    /// `time` in seconds; every field truncated toward zero.
    Timecode(double time, double framesPerSecond);

    /// 00:00:00:00 at that rate.
    [[nodiscard]] static Timecode zero(double framesPerSecond) { return {0.0, framesPerSecond}; }

    /// Seconds, as the fields say it.
    [[nodiscard]] double totalSeconds() const;

    /// "HH:MM:SS:FF", each field at least two digits wide.
    [[nodiscard]] std::string description() const;
};

/// The timecode so many seconds later, at the same rate.
[[nodiscard]] Timecode operator+(const Timecode& timecode, double seconds);

} // namespace zuvo
