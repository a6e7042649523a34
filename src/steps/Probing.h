#pragma once

#include "model/Media.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zuvo {

/// What ffprobe's JSON says about the file at `path`; nothing if the output is no JSON object. Absent and ill-typed
/// keys leave their field empty, and so does a quotient that no double holds.
[[nodiscard]] std::optional<ProbeResult> probeResultFrom(const std::string& path, std::string_view ffprobeOutput);

/// By file name, as the published state of a run keeps them.
using ProbeResults = std::map<std::string, ProbeResult>;

/// probe_results.json: pretty, keys sorted, all twelve keys always there, empty ones null. Nothing if a field holds a
/// number that JSON cannot write.
[[nodiscard]] std::optional<std::string> probeCacheText(const ProbeResults& results);

/// "  {filename}: {duration}, TC: {timecode or none}, {rate}Hz" as it stands in the log; a missing rate gives
/// "unknown" instead of "{rate}Hz".
[[nodiscard]] std::string probeLogLine(const ProbeResult& result);

/// "HH:MM:SS:FF" (";" counts as ":") in seconds, read as non-drop; 0.0 unless there are four parts that are numbers and
/// the seconds are a finite number.
[[nodiscard]] double timecodeToSeconds(std::string_view timecode, double fps);

/// "HH:MM:SS:FF", every field truncated. The seconds often come from a foreign file, so nothing is asserted: beyond 64
/// bits a field stands at the end of the range, and NaN counts as 0.
[[nodiscard]] std::string secondsToTimecode(double seconds, double fps);

/// "M:SS", truncated; minutes are not folded into hours: 3725.0 gives "62:05". Saturates like `secondsToTimecode`.
[[nodiscard]] std::string formatDuration(double seconds);

} // namespace zuvo
