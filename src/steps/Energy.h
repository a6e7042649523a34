#pragma once

#include "base/Json.h"
#include "model/Transcript.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

// How loud each line of a transcript is, from a very low-rate sample stream of the sources. All levels are dB relative
// to full scale; silence is `silenceDb`.

inline constexpr double silenceDb = -60.0;

/// Samples per second of the stream that levels are measured on. Everything that reads samples assumes it.
inline constexpr int levelSampleRate = 1000;

/// The place of one source on the transcript's time line.
///
///     sources    |---- A ----|-- B --|------ C ------|
///     mine time  0          20      31              60
///     t = 20.0 belongs to B: the end of a source is not part of it
struct SourceFile {
    std::string name;      ///< file name, the key into the sample store
    std::string path;      ///< absolute
    double seqStart = 0.0; ///< seconds in mine time
    double seqEnd = 0.0;   ///< seconds in mine time, not included
    double duration = 0.0; ///< seconds
};

/// Mono samples at `levelSampleRate`.
using Samples = std::vector<std::int16_t>;

/// Mono samples at `levelSampleRate` by file name. A source that could not be found has no entry.
using SampleStore = std::map<std::string, Samples>;

/// The sources of a probe_results.json tree, by start timecode (missing or null: 0.0; equal ones by file name), end to
/// end; those shorter than 10 s take no place. Empty if the tree is no object of objects.
[[nodiscard]] std::vector<SourceFile> sourcesFromProbeCache(const Json& probeCache);

/// The first source with `seqStart` <= seconds < `seqEnd`, or nullptr.
[[nodiscard]] const SourceFile* sourceAt(const std::vector<SourceFile>& sources, double seconds);

/// RMS of the samples from `startSec` to `endSec` (seconds from the first sample) in dB relative to full scale. The
/// span is held within the samples and holds at least one. `silenceDb` below an RMS of 1.0 and for an empty sample
/// list.
[[nodiscard]] double computeRMS(std::span<const std::int16_t> pcm, double startSec, double endSec,
                                int sampleRate = levelSampleRate);

/// The level of a stretch of mine time: measured in the source that holds its start, up to that source's end.
/// `silenceDb` if no source holds it or the source has no samples.
[[nodiscard]] double energyBetween(double startSeconds, double endSeconds, const std::vector<SourceFile>& sources,
                                   const SampleStore& samples);

/// One level per transcript line, in order.
[[nodiscard]] std::vector<double> lineEnergies(const std::vector<TranscriptSegment>& lines,
                                               const std::vector<SourceFile>& sources, const SampleStore& samples);

// Which of two channels carries the on-mic voice.

/// ffmpeg filter that keeps the left or the right channel.
inline constexpr const char* leftChannelFilter = "pan=1c|c0=c0";
inline constexpr const char* rightChannelFilter = "pan=1c|c0=c1";

/// What six measurements of mean volume (three places, two channels) came to.
struct ChannelLevels {
    double leftSum = 0.0;  ///< dB, summed over the measurements that parsed
    double rightSum = 0.0; ///< dB
    int samples = 0;       ///< measurements that parsed
};

/// Every "mean_volume:" figure (dB) in what ffmpeg's volumedetect wrote, in order; figures that do not parse are left
/// out.
[[nodiscard]] std::vector<double> meanVolumes(std::string_view ffmpegStderr);

/// `leftChannelFilter` or `rightChannelFilter` if that channel is more than 5 dB louder on average, else "": also with
/// fewer than four measurements. The divisor of the averages is 3 even where one is missing.
[[nodiscard]] std::string primaryChannelFilter(const ChannelLevels& levels);

} // namespace zuvo
