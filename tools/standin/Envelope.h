#pragma once

#include "standin/WavReader.h"

#include <vector>

namespace zuvo::standin {

/// The level of a sound over time: RMS in dB below full scale, one value for each step of `stepSeconds`.
struct Envelope {
    double stepSeconds = 0.02;
    std::vector<double> levels;
};

/// Silence has this level; nothing lies below it.
inline constexpr double envelopeFloorDb = -90.0;

/// An incomplete last step is left out. `stepSeconds` is greater than 0.
[[nodiscard]] Envelope measureEnvelope(const Sound& sound, double stepSeconds);

} // namespace zuvo::standin
