#include "steps/Energy.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace zuvo {

namespace {

/// Sources shorter than this take no place in mine time: the timeline build skips the same ones. Seconds.
constexpr double minimumSourceDuration = 10.0;

/// The level of a sample of greatest amplitude is 0 dB.
constexpr double fullScale = 32768.0;

/// Below this RMS, in sample steps, a span counts as silent.
constexpr double silentRms = 1.0;

/// Candidates for the quiet threshold lie between these tenths of the sorted levels, so that a few outliers at either
/// end cannot form a class of their own.
constexpr std::size_t lowestCandidateTenth = 1;
constexpr std::size_t highestCandidateTenth = 9;

/// The lowest one of so many parts of the upper class counts as medium, the rest as loud.
constexpr std::size_t upperClassParts = 3;

/// Fewer parsed measurements than this decide nothing about the channels.
constexpr int minimumVolumeSamples = 4;

/// Places of the recording at which each channel is measured.
constexpr double volumePlaces = 3.0;

/// A channel must be louder than the other by more than this to be taken alone. dB.
constexpr double channelDifferenceDb = 5.0;

double mean(std::span<const double> values) {
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return sum / static_cast<double>(values.size());
}

/// The number of values times their variance.
double scatter(std::span<const double> values) {
    const double middle = mean(values);
    double sum = 0.0;
    for (const double value : values)
        sum += (value - middle) * (value - middle);
    const auto count = static_cast<double>(values.size());
    return count * (sum / count);
}

std::size_t indexOfFirstNotBelow(std::span<const double> sorted, double value) {
    return static_cast<std::size_t>(std::lower_bound(sorted.begin(), sorted.end(), value) - sorted.begin());
}

/// The candidate that splits the levels with the least scatter within both classes; of equally good ones the lowest.
/// Without any that leaves both classes filled, the median.
double quietThresholdOf(std::span<const double> sorted) {
    const auto count = sorted.size();
    double threshold = sorted[count / 2];
    double best = std::numeric_limits<double>::infinity();
    const auto from = lowestCandidateTenth * count / 10;
    const auto to = highestCandidateTenth * count / 10;
    for (auto i = from; i < to; ++i) {
        // A candidate equal to the one before splits the levels the same way and cannot be strictly better.
        if (i > from && sorted[i] == sorted[i - 1])
            continue;
        const auto split = indexOfFirstNotBelow(sorted, sorted[i]);
        if (split == 0)
            continue;
        const double score = scatter(sorted.first(split)) + scatter(sorted.subspan(split));
        if (score < best) {
            best = score;
            threshold = sorted[i];
        }
    }
    return threshold;
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
    double squares = 0.0;
    for (const auto sample : span)
        squares += static_cast<double>(sample) * static_cast<double>(sample);
    const double rms = std::sqrt(squares / static_cast<double>(span.size()));
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

EnergyThresholds energyThresholds(std::span<const double> energies) {
    EnergyThresholds result;
    if (energies.empty())
        return result;
    std::vector<double> levels(energies.begin(), energies.end());
    std::sort(levels.begin(), levels.end());
    const std::span<const double> sorted = levels;
    result.quietThreshold = quietThresholdOf(sorted);
    const auto upper = sorted.subspan(indexOfFirstNotBelow(sorted, result.quietThreshold));
    result.loudThreshold = upper.empty() ? result.quietThreshold : upper[upper.size() / upperClassParts];
    for (const double energy : energies) {
        if (energy >= result.loudThreshold)
            ++result.loud;
        else if (energy >= result.quietThreshold)
            ++result.medium;
        else
            ++result.quiet;
    }
    return result;
}

std::string energyLogLine(const EnergyThresholds& thresholds) {
    return fmt::format("  Energy: {} loud, {} medium, {} quiet — thresholds: quiet<{}dB<med<{}dB<loud", thresholds.loud,
                       thresholds.medium, thresholds.quiet, fixedText(thresholds.quietThreshold, 0),
                       fixedText(thresholds.loudThreshold, 0));
}

std::string annotatedTranscript(const std::vector<TranscriptSegment>& lines, std::span<const double> energies,
                                const EnergyThresholds& thresholds) {
    assert(energies.size() == lines.size());
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto words = trimBlanks(lines[i].text);
        if (words.empty())
            continue;
        const char* mark = "🔇";
        if (energies[i] >= thresholds.loudThreshold)
            mark = "🔊";
        else if (energies[i] >= thresholds.quietThreshold)
            mark = "🔉";
        text += fmt::format("[{}-{}s] {} {}\n", fixedText(lines[i].start, 1), fixedText(lines[i].end, 1), mark, words);
    }
    return text;
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
