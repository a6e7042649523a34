#pragma once

#include "model/Media.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo::exporters {

// How the exporters find the place in a file that a time of the story means. A namespace of its own, since the steps
// read timecodes under the same name by other rules.

/// A file's place in mine time.
struct OffsetEntry {
    std::string filename;
    double seqStart = 0.0; ///< seconds in mine time
    double seqEnd = 0.0;   ///< seconds in mine time, not included
    double bwfStart = 0.0; ///< the file's start timecode in seconds, 0.0 without one
};

/// The files in the order of mine time, end to end from 0.
using OffsetMap = std::vector<OffsetEntry>;

/// "HH:MM:SS:FF" in seconds, read as non-drop; a missing FF counts as 0. Empty pieces and pieces that are no integer
/// are passed over; nothing if fewer than three are left. So a drop-frame timecode, "01:00:00;12", gives nothing.
[[nodiscard]] std::optional<double> timecodeToSeconds(const std::optional<std::string>& text, double fps = 24.0);

/// All files end to end by start timecode, read at 24 frames a second whatever the export's rate; equal timecodes in
/// the order given. No file is too short to have its place, and gaps between recordings are not kept:
///
///     start timecode   09:59:50:00              10:00:00:00
///     recorded         |---- A, 6 s ----|       |-------- B, 8 s --------|
///     mine time        |---- A ---------|-------- B --------|
///                      0                6                   14
[[nodiscard]] OffsetMap buildOffsetMap(const std::vector<MediaFileInfo>& mediaFiles);

/// Where a position in a file is counted from.
enum class SourceOrigin {
    fileTimecode, ///< the file's own timecode: its first sample is at its start timecode
    firstSample,  ///< the file's first sample is at 0
};

/// A place in a file.
struct SourceTime {
    std::string_view filename; ///< a view into the map
    double seconds = 0.0;      ///< from the origin that was asked for
};

/// The first file that holds the time; a file's end belongs to the next one. A time behind the last file's end runs on
/// in that file. Nothing for a time before the first file, one that is no number, or an empty map.
[[nodiscard]] std::optional<SourceTime> resolveSourceTime(double sequentialTime, const OffsetMap& offsetMap,
                                                          SourceOrigin origin);

} // namespace zuvo::exporters
