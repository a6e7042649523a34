#pragma once

#include "fakes/RawServer.h"

#include <chrono>
#include <string>
#include <vector>

namespace zuvo::tests {

/// The key or token that a test over these rows sends: some servers repeat it.
inline constexpr const char* repeatedKey = "made-up-key-that-is-repeated";

/// What becomes of a request: an answer, or a failure in words.
struct HostileOutcome {
    int status = 0;
    std::string body;
    std::string failure;
};

/// One thing that a server can do to a request.
struct HostileRow {
    std::string name;
    Behaviour behaviour;
    HostileOutcome outcome;
    bool actsBeforeBody = false; ///< while the request is still being sent
    bool timesOut = false;       ///< ends by time-out alone, so that a test may keep it short

    [[nodiscard]] std::chrono::milliseconds timeout() const {
        return timesOut ? std::chrono::milliseconds(250) : std::chrono::milliseconds(20'000);
    }
};

/// All of them; their outcomes are those of a request that takes up to `answerLimit` bytes.
[[nodiscard]] std::vector<HostileRow> hostileRows(std::size_t answerLimit);

} // namespace zuvo::tests
