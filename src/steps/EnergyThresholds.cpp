#include "steps/EnergyThresholds.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>
#include <cassert>
#include <fmt/format.h>
#include <iterator>
#include <limits>

namespace zuvo {

namespace {

/// Candidates for the quiet threshold lie between these tenths of the sorted levels, so that a few outliers at either
/// end cannot form a class of their own.
constexpr std::size_t lowestCandidateTenth = 1;
constexpr std::size_t highestCandidateTenth = 9;

/// The lowest one of so many parts of the upper class counts as medium, the rest as loud.
constexpr std::size_t upperClassParts = 3;

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

/// What decides between splits, the upper class beginning at the index `split`.
double scoreOf(std::span<const double> sorted, std::size_t split) {
    return scatter(sorted.first(split)) + scatter(sorted.subspan(split));
}

std::size_t indexOfFirstNotBelow(std::span<const double> sorted, double value) {
    return static_cast<std::size_t>(std::lower_bound(sorted.begin(), sorted.end(), value) - sorted.begin());
}

/// The splits that leave both classes filled, ascending. One a distinct level: a candidate equal to the one before
/// splits the levels the same way and cannot be strictly better.
std::vector<std::size_t> candidateSplits(std::span<const double> sorted) {
    std::vector<std::size_t> splits;
    const auto from = lowestCandidateTenth * sorted.size() / 10;
    const auto to = highestCandidateTenth * sorted.size() / 10;
    for (auto i = from; i < to; ++i) {
        if (i > from && sorted[i] == sorted[i - 1])
            continue;
        const auto split = i == from ? indexOfFirstNotBelow(sorted, sorted[i]) : i;
        if (split > 0)
            splits.push_back(split);
    }
    return splits;
}

// The score of one split costs a pass over all levels, so trying every split so would be quadratic in the lines. But
// with z the levels less any constant, L and H their sums in the two classes and Z the sum of all z squared,
//
//     |low| × variance(low) + |high| × variance(high)  =  W  =  Z - G,   G = L² ÷ |low| + H² ÷ |high|
//
// and running sums give G, the gain of a split, for all of them in one pass. In doubles neither side is exact. With
// u = 2^-53 and g(k) = k u ÷ (1 - k u), the bound of k roundings in a row (g(j) + g(k) <= g(j + k)), for n levels x:
//
//   - The score takes n additions and a division for the mean, which is off by at most g(n) × the mean of |x|. Exact
//     squares about a mean that is off by e sum up to n e² more, in both classes at most g(n)² X, X = sum of x². The
//     rest is n + 5 roundings of sums without a negative term. So |score - W| <= g(n + 5) W + 2 g(n)² X, and W <= Z.
//   - L and H are sums of at most n terms with a rounding in each, then squared, divided and added: each product of
//     two z is off by at most g(2n + 3), and their absolute values sum up to at most Z (Cauchy and Schwarz). So
//     |computed G - G| <= g(2n + 3) Z.
//
// Together |score - (Z - computed G)| <= R = g(3n + 8) Z + 2 g(n)² X. The split of the least score therefore has a
// computed gain of at least the greatest less 2 R, and so has every split that ties with it.

/// What a computed gain may lie below the greatest, its split still having the least score: 2 R and more.
double gainAllowance(std::span<const double> sorted, double sumOfCentredSquares) {
    double squares = 0.0;
    for (const double level : sorted)
        squares += level * level;
    const auto count = static_cast<double>(sorted.size());
    constexpr double epsilon = std::numeric_limits<double>::epsilon(); // 2 u
    const double drift = count * epsilon;
    // (3n + 8) × 2 u is what is needed. Taking 4n + 16 outweighs the denominators of g and what is rounded in the sums
    // of squares, in this bound and in its subtraction; the last term whatever underflows on the way.
    return (4.0 * count + 16.0) * epsilon * sumOfCentredSquares + 2.0 * drift * drift * squares +
           count * std::numeric_limits<double>::min();
}

/// Those of the splits that can have the least score, ascending: one or two as a rule.
std::vector<std::size_t> contenders(std::span<const double> sorted, const std::vector<std::size_t>& splits) {
    const auto count = sorted.size();
    const double centre = mean(sorted); // any constant will do; with this one Z is least
    std::vector<double> sumBelow(count + 1, 0.0);
    std::vector<double> sumFrom(count + 1, 0.0);
    double squares = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double centred = sorted[i] - centre;
        sumBelow[i + 1] = sumBelow[i] + centred;
        squares += centred * centred;
    }
    for (auto i = count; i-- > 0;)
        sumFrom[i] = sumFrom[i + 1] + (sorted[i] - centre);

    const auto gainOf = [&](std::size_t split) {
        return sumBelow[split] * sumBelow[split] / static_cast<double>(split) +
               sumFrom[split] * sumFrom[split] / static_cast<double>(count - split);
    };
    double greatest = 0.0;
    for (const auto split : splits)
        greatest = std::max(greatest, gainOf(split));
    const double leastGain = greatest - gainAllowance(sorted, squares);
    std::vector<std::size_t> kept;
    // Said so that levels whose squares are no finite numbers keep every split.
    std::copy_if(splits.begin(), splits.end(), std::back_inserter(kept),
                 [&](std::size_t split) { return !(gainOf(split) < leastGain); });
    return kept;
}

/// The candidate that splits the levels with the least scatter within both classes; of equally good ones the lowest.
/// Without any that leaves both classes filled, the median.
double quietThresholdOf(std::span<const double> sorted) {
    double threshold = sorted[sorted.size() / 2];
    double best = std::numeric_limits<double>::infinity();
    for (const auto split : contenders(sorted, candidateSplits(sorted))) {
        const double score = scoreOf(sorted, split);
        if (score < best) {
            best = score;
            threshold = sorted[split];
        }
    }
    return threshold;
}

} // namespace

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

} // namespace zuvo
