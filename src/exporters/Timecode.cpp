#include "exporters/Timecode.h"

#include "base/Numbers.h"

#include <cmath>
#include <fmt/format.h>

namespace zuvo {

Timecode::Timecode(double time, double framesPerSecond)
    : hours(truncated(time / 3600.0)),
      minutes(truncated(std::fmod(time, 3600.0) / 60.0)),
      seconds(truncated(std::fmod(time, 60.0))),
      frames(truncated(std::fmod(time, 1.0) * framesPerSecond)),
      fps(framesPerSecond) {}

double Timecode::totalSeconds() const {
    return static_cast<double>(hours) * 3600.0 + static_cast<double>(minutes) * 60.0 + static_cast<double>(seconds) +
           static_cast<double>(frames) / fps;
}

std::string Timecode::description() const {
    return fmt::format("{:02d}:{:02d}:{:02d}:{:02d}", hours, minutes, seconds, frames);
}

Timecode operator+(const Timecode& timecode, double seconds) {
    return {timecode.totalSeconds() + seconds, timecode.fps};
}

} // namespace zuvo
