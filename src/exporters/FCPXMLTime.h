#pragma once

#include <string>

namespace zuvo {

/// FCPXML's times: fractions of a second. Rates are known by exact equality; any other rate counts as so many
/// hundredths of a frame a second, whose fractions of frames may come out odd.
///
///     23.976    frame 1001/24000s    counted in 1/24000 s
///     24        frame 100/2400s      counted in 1/2400 s
///     23.98     frame 100/2398s      counted in 1/2398 s
///
/// Nothing is refused: numbers stand at the end of the 64-bit range if they do not fit, and what is no number is 0. A
/// rate under a hundredth has the denominator 0.
struct FCPXMLTime {
    /// One frame.
    [[nodiscard]] static std::string frameDuration(double fps);

    /// The time in whole seconds if it comes out so, else as a fraction that is neither reduced nor moved to a whole
    /// frame: 5.0 at 24 is "5s", 1.5 at 23.976 "36000/24000s", 0.1 at 29.97 "3000/30000s".
    [[nodiscard]] static std::string rational(double seconds, double fps);

    /// The same, for a place on a time line.
    [[nodiscard]] static std::string offset(double seconds, double fps) { return rational(seconds, fps); }
};

} // namespace zuvo
