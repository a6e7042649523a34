#include "standin/Envelope.h"

#include <algorithm>
#include <cmath>

namespace zuvo::standin {

Envelope measureEnvelope(const Sound& sound, double stepSeconds) {
    Envelope envelope{stepSeconds, {}};
    const auto boundary = [&](std::size_t step) {
        return static_cast<std::size_t>(std::llround(static_cast<double>(step) * stepSeconds * sound.sampleRate));
    };
    for (std::size_t step = 0; boundary(step + 1) <= sound.samples.size(); ++step) {
        const std::size_t begin = boundary(step);
        const std::size_t end = std::max(boundary(step + 1), begin + 1);
        if (end > sound.samples.size())
            break;
        double power = 0.0;
        for (std::size_t at = begin; at < end; ++at)
            power += static_cast<double>(sound.samples[at]) * static_cast<double>(sound.samples[at]);
        power /= static_cast<double>(end - begin);
        envelope.levels.push_back(power > 0.0 ? std::max(envelopeFloorDb, 10.0 * std::log10(power)) : envelopeFloorDb);
    }
    return envelope;
}

} // namespace zuvo::standin
