#pragma once

#include "model/Media.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zuvo {

/// What ffprobe's JSON says about the file at `path`; nothing if the output is no JSON object. Absent and ill-typed
/// keys leave their field empty.
[[nodiscard]] std::optional<ProbeResult> probeResultFrom(const std::string& path, std::string_view ffprobeOutput);

/// By file name, as the published state of a run keeps them.
using ProbeResults = std::map<std::string, ProbeResult>;

/// probe_results.json: pretty, keys sorted, all twelve keys always there, empty ones null.
[[nodiscard]] std::optional<std::string> probeCacheText(const ProbeResults& results);

/// "  {filename}: {duration}, TC: {timecode or none}, {rate}Hz" as it stands in the log.
[[nodiscard]] std::string probeLogLine(const ProbeResult& result);

/// "HH:MM:SS:FF" (";" counts as ":") in seconds, read as non-drop; 0.0 unless there are four parts that are numbers.
[[nodiscard]] double timecodeToSeconds(std::string_view timecode, double fps);

/// "HH:MM:SS:FF", every field truncated.
[[nodiscard]] std::string secondsToTimecode(double seconds, double fps);

/// "M:SS", truncated; minutes are not folded into hours.
[[nodiscard]] std::string formatDuration(double seconds);

} // namespace zuvo
