#pragma once

#include <string>

namespace zuvo {

/// The colour words of log lines; the pages map them to colours.
namespace LogColor {
inline constexpr const char* dim = "dim";
inline constexpr const char* muted = "muted";
inline constexpr const char* green = "green";
inline constexpr const char* accent = "accent";
} // namespace LogColor

/// Minutes and seconds of the wall clock.
struct ClockTime {
    int minute = 0;
    int second = 0;
};

/// One line of a run's log.
struct PipelineLog {
    std::string id;        ///< a random UUID, unique per line
    std::string timestamp; ///< wall-clock "mm:ss" at which the line was made; repeats every hour
    std::string text;
    std::string color; ///< one of `LogColor`

    /// The clock and the identity come from the caller.
    [[nodiscard]] static PipelineLog make(std::string text, std::string color, ClockTime time, std::string id);
};

} // namespace zuvo
