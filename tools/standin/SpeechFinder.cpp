#include "standin/SpeechFinder.h"

#include "base/Text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace zuvo::standin {
namespace {

constexpr double riseDb = 8.0;              // speech stands out from the background by at least this much
constexpr double alwaysSpeechDb = -40.0;    // louder than this is speech, whatever the background
constexpr double neverSpeechDb = -60.0;     // quieter than this is none
constexpr double breathSeconds = 0.5;       // a shorter break does not end a stretch
constexpr double blipSeconds = 0.3;         // a shorter stretch is a knock, not speech
constexpr double shortStretchSeconds = 3.0; // a shorter one looks for a neighbour
constexpr double neighbourSeconds = 1.0;    // ... at most this far away
constexpr double longestStretchSeconds = 10.0;

double speechThreshold(std::vector<double> levels) {
    const auto fifth = levels.begin() + static_cast<std::ptrdiff_t>(levels.size() / 5);
    std::nth_element(levels.begin(), fifth, levels.end());
    return std::clamp(*fifth + riseDb, neverSpeechDb, alwaysSpeechDb);
}

std::vector<Stretch> loudStretches(const Envelope& envelope, std::size_t first, std::size_t last, double threshold) {
    std::vector<Stretch> stretches;
    for (std::size_t step = first; step < last; ++step) {
        if (envelope.levels[step] < threshold)
            continue;
        const double start = static_cast<double>(step) * envelope.stepSeconds;
        const double end = static_cast<double>(step + 1) * envelope.stepSeconds;
        if (!stretches.empty() && start - stretches.back().end < breathSeconds)
            stretches.back().end = end;
        else
            stretches.push_back({start, end});
    }
    std::erase_if(stretches, [](const Stretch& s) { return s.end - s.start < blipSeconds; });
    return stretches;
}

std::vector<Stretch> joinShortOnes(const std::vector<Stretch>& stretches) {
    std::vector<Stretch> joined;
    for (const Stretch& stretch : stretches) {
        const bool fits = !joined.empty() && stretch.start - joined.back().end <= neighbourSeconds &&
                          stretch.end - joined.back().start <= longestStretchSeconds;
        const bool oneIsShort = fits && (stretch.end - stretch.start < shortStretchSeconds ||
                                         joined.back().end - joined.back().start < shortStretchSeconds);
        if (oneIsShort)
            joined.back().end = stretch.end;
        else
            joined.push_back(stretch);
    }
    return joined;
}

} // namespace

std::vector<Stretch> findSpeech(const Envelope& envelope, std::size_t first, std::size_t last) {
    last = std::min(last, envelope.levels.size());
    if (first >= last)
        return {};
    const double threshold = speechThreshold({envelope.levels.begin() + static_cast<std::ptrdiff_t>(first),
                                              envelope.levels.begin() + static_cast<std::ptrdiff_t>(last)});
    std::vector<Stretch> pieces;
    for (const Stretch& stretch : joinShortOnes(loudStretches(envelope, first, last, threshold))) {
        const double length = stretch.end - stretch.start;
        const int count = std::max(1, static_cast<int>(std::ceil(length / longestStretchSeconds - 1e-9)));
        for (int index = 0; index < count; ++index)
            pieces.push_back({stretch.start + length * index / count, stretch.start + length * (index + 1) / count});
    }
    return pieces;
}

HeardLine describeSpeech(const Stretch& stretch) {
    HeardLine line{stretch.start,
                   stretch.end,
                   fmt::format("Speech from {:.1f} to {:.1f} seconds.", stretch.start, stretch.end),
                   {}};
    const std::vector<std::string_view> words = splitAtBlanks(line.text);
    const double share = (stretch.end - stretch.start) / static_cast<double>(words.size());
    for (std::size_t index = 0; index < words.size(); ++index)
        line.words.push_back({std::string(words[index]), stretch.start + share * static_cast<double>(index),
                              stretch.start + share * static_cast<double>(index + 1)});
    return line;
}

} // namespace zuvo::standin
