#include "steps/Energy.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zuvo {

namespace {

/// Sources shorter than this take no place in mine time: the timeline build skips the same ones. Seconds.
constexpr double minimumSourceDuration = 10.0;

/// The level of a sample of greatest amplitude is 0 dB.
constexpr double fullScale = 32768.0;

/// Below this RMS, in sample steps, a span counts as silent.
constexpr double silentRms = 1.0;

/// Fewer parsed measurements than this decide nothing about the channels.
constexpr int minimumVolumeSamples = 4;

/// Places of the recording at which each channel is measured.
constexpr double volumePlaces = 3.0;

/// A channel must be louder than the other by more than this to be taken alone. dB.
constexpr double channelDifferenceDb = 5.0;

/// Whole numbers below this are all doubles of their own: a sum that stays below has not been rounded.
constexpr std::int64_t exactDoubles = std::int64_t{1} << std::numeric_limits<double>::digits;

/// Of up to 2^33 samples (months), so that whole numbers cannot overflow.
std::int64_t wholeSumOfSquares(std::span<const std::int16_t> samples) {
    std::int64_t sum = 0;
    for (const std::int32_t sample : samples) {
        const std::int32_t square = sample * sample;
        sum += square;
    }
    return sum;
}

/// The squares added up as doubles, from the left. Whole numbers give the very same sum as long as doubles do not round
/// it, which takes more than two hours at full scale, and several samples are added at a time.
double sumOfSquares(std::span<const std::int16_t> samples) {
    if (const auto whole = wholeSumOfSquares(samples); whole <= exactDoubles)
        return static_cast<double>(whole);
    double sum = 0.0;
    for (const double sample : samples)
        sum += sample * sample;
    return sum;
}

} // namespace

std::vector<SourceFile> sourcesFromProbeCache(const Json& probeCache) {
    if (!probeCache.is_object())
        return {};
    struct Entry {
        std::string name;
        const Json* probe;
        double startTimecode;
    };
    std::vector<Entry> entries;
    for (const auto& [name, probe] : probeCache.items()) {
        if (!probe.is_object())
            return {};
        entries.push_back({name, &probe, readNumber(probe, "startTimecodeSeconds").value_or(0.0)});
    }
    // The keys of the tree ascend, so that entries of equal timecode stay ordered by name.
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.startTimecode < b.startTimecode; });
    std::vector<SourceFile> sources;
    double cumulative = 0.0;
    for (const auto& entry : entries) {
        const double duration = readNumber(*entry.probe, "duration").value_or(0.0);
        if (duration < minimumSourceDuration)
            continue;
        sources.push_back(
            {entry.name, readText(*entry.probe, "path").value_or(""), cumulative, cumulative + duration, duration});
        cumulative += duration;
    }
    return sources;
}

const SourceFile* sourceAt(const std::vector<SourceFile>& sources, double seconds) {
    const auto found = std::find_if(sources.begin(), sources.end(), [seconds](const SourceFile& source) {
        return source.seqStart <= seconds && seconds < source.seqEnd;
    });
    return found == sources.end() ? nullptr : &*found;
}

double computeRMS(std::span<const std::int16_t> pcm, double startSec, double endSec, int sampleRate) {
    if (pcm.empty())
        return silenceDb;
    const auto count = static_cast<std::int64_t>(pcm.size());
    const auto first = std::max<std::int64_t>(0, std::min(truncated(startSec * sampleRate), count - 1));
    const auto last = std::max(first + 1, std::min(truncated(endSec * sampleRate), count));
    const auto span = pcm.subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first));
    const double rms = std::sqrt(sumOfSquares(span) / static_cast<double>(span.size()));
    if (rms < silentRms)
        return silenceDb;
    return 20.0 * std::log10(rms / fullScale);
}

double energyBetween(double startSeconds, double endSeconds, const std::vector<SourceFile>& sources,
                     const SampleStore& samples) {
    const auto* source = sourceAt(sources, startSeconds);
    if (source == nullptr)
        return silenceDb;
    const auto pcm = samples.find(source->name);
    if (pcm == samples.end())
        return silenceDb;
    return computeRMS(pcm->second, startSeconds - source->seqStart,
                      std::min(endSeconds, source->seqEnd) - source->seqStart);
}

std::vector<double> lineEnergies(const std::vector<TranscriptSegment>& lines, const std::vector<SourceFile>& sources,
                                 const SampleStore& samples) {
    std::vector<double> energies;
    energies.reserve(lines.size());
    for (const auto& line : lines)
        energies.push_back(energyBetween(line.start, line.end, sources, samples));
    return energies;
}

std::vector<double> meanVolumes(std::string_view ffmpegStderr) {
    constexpr std::string_view label = "mean_volume:";
    std::vector<double> volumes;
    for (const auto line : split(ffmpegStderr, '\n')) {
        const auto found = line.rfind(label);
        if (found == std::string_view::npos)
            continue;
        const auto figure = replaceAll(trimBlanks(line.substr(found + label.size())), " dB", "");
        if (const auto volume = parseDouble(figure))
            volumes.push_back(*volume);
    }
    return volumes;
}

std::string primaryChannelFilter(const ChannelLevels& levels) {
    if (levels.samples < minimumVolumeSamples)
        return {};
    const double left = levels.leftSum / volumePlaces;
    const double right = levels.rightSum / volumePlaces;
    if (left - right > channelDifferenceDb)
        return leftChannelFilter;
    if (right - left > channelDifferenceDb)
        return rightChannelFilter;
    return {};
}

} // namespace zuvo
