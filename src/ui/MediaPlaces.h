#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zuvo {

/// Which file holds which part of the sources laid end to end:
///
///     sources    |---- A ----|-- B --|
///     mine time  0          20      31
///     20.0 belongs to B; from 31.0 on no file holds it
struct MediaPlace {
    std::string path;
    double seqStart = 0.0; ///< seconds in mine time
    double seqEnd = 0.0;   ///< seconds in mine time, not included
};

/// A file and how long it is, in seconds.
struct MediaLength {
    std::string path;
    double duration = 0.0;
};

/// The files end to end in the order given.
[[nodiscard]] std::vector<MediaPlace> laidEndToEnd(const std::vector<MediaLength>& files);

/// The media that probe_results.json in the cache folder knows with a length above 0, by start timecode; those without
/// one count as starting at 0, equal ones keep the order given. Empty if it knows none.
[[nodiscard]] std::vector<MediaPlace> placesFromProbe(const std::string& cacheFolder,
                                                      const std::vector<std::string>& mediaPaths);

/// By file name; equal names keep the order given.
[[nodiscard]] std::vector<std::string> sortedByName(std::vector<std::string> paths);

/// Where to play.
struct LocalPlace {
    std::string path;
    double seconds = 0.0; ///< from the file's first sample
};

/// The place in the file that holds the time. A time that no file holds is played as it stands from the first file;
/// nothing if there are no files.
[[nodiscard]] std::optional<LocalPlace> placeOf(double mineTime, const std::vector<MediaPlace>& places);

} // namespace zuvo
