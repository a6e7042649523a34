#pragma once

#include "model/Transcript.h"
#include "steps/Energy.h"

#include <span>
#include <string>
#include <vector>

namespace zuvo {

// Where quiet, medium and loud part in this very recording, and the transcript that tells the model of it.

/// Levels in dB relative to full scale, and how many lines lie in each class.
struct EnergyThresholds {
    double quietThreshold = silenceDb; ///< below it a line is quiet
    double loudThreshold = silenceDb;  ///< at or above it a line is loud; between the two it is medium
    std::size_t loud = 0;
    std::size_t medium = 0;
    std::size_t quiet = 0;
};

/// The two-class split of the lines' levels (finite numbers) with the least within-class variance, then a cut at the
/// lower third of the upper class. An empty list gives both thresholds at `silenceDb` and counts of 0.
///
/// The quiet threshold is the lowest level between the first and the last tenth of the sorted levels for which
/// |low| × variance(low) + |high| × variance(high) is least, each computed in doubles in two passes, from the left over
/// ascending levels. It is that very level, also where two scores differ in their last digit or not at all.
[[nodiscard]] EnergyThresholds energyThresholds(std::span<const double> energies);

/// "  Energy: {loud} loud, ..." as it stands in the log.
[[nodiscard]] std::string energyLogLine(const EnergyThresholds& thresholds);

/// One line "[{start}-{end}s] {mark} {text}" with a line end for each transcript line that is not blank. `energies` has
/// one value per line.
[[nodiscard]] std::string annotatedTranscript(const std::vector<TranscriptSegment>& lines,
                                              std::span<const double> energies, const EnergyThresholds& thresholds);

} // namespace zuvo
