#include "standin/Listener.h"

#include "standin/SpeechFinder.h"

#include <cmath>

namespace zuvo::standin {
namespace {

constexpr double leastUnknownSeconds = 1.0; // a shorter remainder beside the sample is its seam, not other audio

void hearUnknown(const Envelope& envelope, std::size_t first, std::size_t last, std::vector<HeardLine>& lines) {
    for (const Stretch& stretch : findSpeech(envelope, first, last))
        lines.push_back(describeSpeech(stretch));
}

} // namespace

std::vector<HeardLine> listen(const SampleKnowledge& sample, const Sound& sound) {
    const Envelope envelope = measureEnvelope(sound, sample.stepSeconds);
    const std::vector<Placement> placements = findSample(sample, envelope.levels);
    std::vector<HeardLine> lines;
    if (placements.empty()) {
        hearUnknown(envelope, 0, envelope.levels.size(), lines);
        return lines;
    }
    const auto seam = static_cast<std::size_t>(std::llround(leastUnknownSeconds / sample.stepSeconds));
    std::size_t reached = 0;
    for (const Placement& placement : placements) {
        if (placement.first - reached >= seam)
            hearUnknown(envelope, reached, placement.first, lines);
        const std::vector<HeardLine> known = linesOf(sample, placement);
        lines.insert(lines.end(), known.begin(), known.end());
        reached = placement.last;
    }
    if (envelope.levels.size() - reached >= seam)
        hearUnknown(envelope, reached, envelope.levels.size(), lines);
    return lines;
}

} // namespace zuvo::standin
