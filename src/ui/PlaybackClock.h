#pragma once

namespace zuvo {

/// How far a playback has come, told smoothly. A sound device says it only now and then and in leaps; between its words
/// this clock goes on with the time that passes, and leans towards what it says. It never goes back.
class PlaybackClock {
public:
    /// The device has played so many seconds at the time `now`, in seconds of a steady clock. The clock stands at 0
    /// until it is told of more than 0.
    void report(double played, double now);

    /// Seconds played by then.
    [[nodiscard]] double at(double now) const;

private:
    double m_played = 0.0;   ///< as the clock told at m_since
    double m_since = 0.0;    ///< seconds of the steady clock
    double m_rate = 1.0;     ///< seconds told a second
    double m_reported = 0.0; ///< what the device said last
    bool m_isRunning = false;
};

} // namespace zuvo
