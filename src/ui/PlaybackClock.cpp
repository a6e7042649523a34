#include "ui/PlaybackClock.h"

#include <algorithm>

namespace zuvo {

namespace {

/// A device that has said nothing new for that long stands still; larger steps of devices would make the clock stutter.
constexpr double longestStep = 0.25; ///< seconds

/// Farther off than this the clock leaps to the device instead of leaning.
constexpr double leap = 0.25; ///< seconds

/// How much faster or slower the clock runs for each second that it is off: half of what it is off is gone after 0.35
/// s.
constexpr double leaning = 2.0;
constexpr double slowest = 0.5;
constexpr double fastest = 1.5;

} // namespace

void PlaybackClock::report(double played, double now) {
    if (played <= m_reported)
        return;
    const auto told = at(now);
    const auto off = played - told;
    const bool leaps = !m_isRunning || off > leap;
    m_played = leaps ? played : told;
    m_rate = leaps ? 1.0 : std::clamp(1.0 + off * leaning, slowest, fastest);
    m_since = now;
    m_reported = played;
    m_isRunning = true;
}

double PlaybackClock::at(double now) const {
    if (!m_isRunning)
        return 0.0;
    const auto farthest = std::max(m_played, m_reported + longestStep);
    return std::min(m_played + std::max(now - m_since, 0.0) * m_rate, farthest);
}

} // namespace zuvo
