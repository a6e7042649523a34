#pragma once

#include "standin/Envelope.h"
#include "standin/Heard.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zuvo::standin {

/// One file of the sample interview: what is said in it, and its level over time. Times are seconds in the file.
struct SampleFile {
    std::string name;
    double duration = 0.0;
    std::vector<HeardLine> lines;
    std::vector<double> levels; ///< dB, one for each step
};

/// What is known by heart: the files of the sample and the step of their levels.
struct SampleKnowledge {
    double stepSeconds = 0.02;
    std::vector<SampleFile> files;
};

/// Reads `transcript.json` in the folder. Nothing if it is missing or not of the expected form.
[[nodiscard]] std::optional<SampleKnowledge> loadSample(const std::filesystem::path& folder);

/// A stretch of audio that is a stretch of a sample file. Steps of the audio's envelope, end not included; `shift` is
/// where the file's own beginning would lie in the audio (negative if the audio begins later).
///
///     file            |------------------------|
///     audio                |=======|                     first 0, last 8, shift -5
struct Placement {
    std::size_t first = 0;
    std::size_t last = 0;
    std::ptrdiff_t shift = 0;
    std::size_t file = 0;
};

/// Where in the audio the sample is heard, in order of time and without overlap. The shapes of the levels are compared
/// by normalised cross-correlation, so loudness as a whole does not matter. `levels` are measured in steps of the
/// sample's length. A passage that jumps within one sample file is recognised only in pieces that reach the audio's or
/// the file's ends.
[[nodiscard]] std::vector<Placement> findSample(const SampleKnowledge& sample, const std::vector<double>& levels);

/// The lines heard in a placement, times in the audio. Only words that lie within it (a word may be shaved by less than
/// a tenth of a second); a line is cut down to those, and one without any is left out.
[[nodiscard]] std::vector<HeardLine> linesOf(const SampleKnowledge& sample, const Placement& placement);

} // namespace zuvo::standin
