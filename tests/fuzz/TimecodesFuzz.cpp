// A timecode of a media file, read by both readers, and the figures that follow it, one a line: a time in seconds and a
// frame rate, written by both writers.

#include "Fuzzing.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "exporters/FCPXMLTime.h"
#include "exporters/OffsetMap.h"
#include "exporters/Timecode.h"
#include "steps/Probing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

using namespace zuvo;

namespace {

constexpr double framesPerSecond = 24.0;

/// The seconds of a timecode in the one form that cameras write, "HH:MM:SS:FF"; nothing for any other text.
std::optional<double> secondsOfPlainTimecode(std::string_view text) {
    constexpr std::string_view form = "00:00:00:00";
    if (text.size() != form.size())
        return std::nullopt;
    for (std::size_t i = 0; i < form.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (form[i] == ':' ? text[i] != ':' : !isDigit)
            return std::nullopt;
    }
    const auto field = [text](std::size_t place) { return (text[place] - '0') * 10 + (text[place + 1] - '0'); };
    return field(0) * 3600 + field(3) * 60 + field(6) + field(9) / framesPerSecond;
}

bool areClose(double a, double b) {
    return std::abs(a - b) < 1e-6;
}

bool isTimecode(std::string_view text) {
    return text.find_first_not_of("0123456789:-") == std::string_view::npos &&
           std::count(text.begin(), text.end(), ':') == 3;
}

void read(std::string_view text, double fps) {
    const double probed = timecodeToSeconds(text, framesPerSecond);
    fuzzing::require(std::isfinite(probed) && std::isfinite(timecodeToSeconds(text, fps)));
    const auto exported = exporters::timecodeToSeconds(std::string(text), framesPerSecond);
    (void)exporters::timecodeToSeconds(std::string(text), fps);

    const auto separators = std::count_if(text.begin(), text.end(), [](char c) { return c == ':' || c == ';'; });
    fuzzing::require(separators == 3 || probed == 0.0);
    fuzzing::require(std::count(text.begin(), text.end(), ':') >= 2 || !exported);
    if (const auto plain = secondsOfPlainTimecode(text)) {
        fuzzing::require(areClose(probed, *plain));
        fuzzing::require(exported && areClose(*exported, *plain));
    }
}

void write(double seconds, double fps) {
    fuzzing::require(isTimecode(secondsToTimecode(seconds, fps)));
    fuzzing::require(isTimecode(Timecode(seconds, fps).description()));
    (void)formatDuration(seconds);
    (void)(Timecode(seconds, fps) + seconds).description();
    fuzzing::require(FCPXMLTime::rational(seconds, fps).ends_with("s"));
    fuzzing::require(FCPXMLTime::frameDuration(fps).ends_with("s"));

    // What is cut off is less than a frame.
    if (seconds < 0.0 || seconds > 1e6 || fps < 1.0 || fps > 1000.0)
        return;
    const double shown = Timecode(seconds, fps).totalSeconds();
    fuzzing::require(shown <= seconds + 1e-6 && shown > seconds - 1.0 / fps - 1e-6);
}

double number(const std::vector<std::string_view>& lines, std::size_t i) {
    return i < lines.size() ? parseDouble(lines[i]).value_or(0.0) : 0.0;
}

} // namespace

ZUVO_FUZZ_TARGET {
    const auto lines = split(text, '\n');
    const double seconds = number(lines, 1);
    const double fps = number(lines, 2);
    read(lines.front(), fps);
    write(seconds, fps);
    write(timecodeToSeconds(lines.front(), fps), framesPerSecond);
}
