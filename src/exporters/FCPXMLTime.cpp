#include "exporters/FCPXMLTime.h"

#include "base/Numbers.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fmt/format.h>
#include <limits>

namespace zuvo {

namespace {

struct Rate {
    double fps;
    std::int64_t frameNumerator;
    double standardDenominator;
};

constexpr std::array<Rate, 8> listedRates = {{{23.976, 1001, 24000.0},
                                              {24.0, 100, 2400.0},
                                              {25.0, 100, 2500.0},
                                              {29.97, 1001, 30000.0},
                                              {30.0, 100, 3000.0},
                                              {50.0, 100, 5000.0},
                                              {59.94, 1001, 60000.0},
                                              {60.0, 100, 6000.0}}};

Rate rateOf(double fps) {
    const auto* const found =
        std::find_if(listedRates.begin(), listedRates.end(), [fps](const Rate& rate) { return rate.fps == fps; });
    return found != listedRates.end() ? *found : Rate{fps, 100, fps * 100.0};
}

bool divides(std::int64_t denominator, std::int64_t numerator) {
    // -1 divides everything, and asking the processor about the smallest number would end the process.
    return denominator == -1 || (denominator != 0 && numerator % denominator == 0);
}

/// Of a denominator that divides the numerator.
std::int64_t quotient(std::int64_t numerator, std::int64_t denominator) {
    if (denominator == -1 && numerator == std::numeric_limits<std::int64_t>::min())
        return std::numeric_limits<std::int64_t>::max();
    return numerator / denominator;
}

} // namespace

std::string FCPXMLTime::frameDuration(double fps) {
    const auto rate = rateOf(fps);
    return fmt::format("{}/{}s", rate.frameNumerator, truncated(rate.standardDenominator));
}

std::string FCPXMLTime::rational(double seconds, double fps) {
    if (seconds == 0.0)
        return "0s";
    const auto rate = rateOf(fps);
    const auto numerator = rounded(seconds * rate.standardDenominator);
    const auto denominator = truncated(rate.standardDenominator);
    if (divides(denominator, numerator))
        return fmt::format("{}s", quotient(numerator, denominator));
    return fmt::format("{}/{}s", numerator, denominator);
}

} // namespace zuvo
