#pragma once

#include "platform/Clock.h"
#include "platform/Environment.h"
#include "platform/Http.h"
#include "platform/Processes.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace zuvo {

/// Everything through which a mine touches the world. A program takes the machine's own; a test puts its own in any
/// place.
struct Platform {
    Environment environment;
    Clock clock;
    std::function<std::string()> newUuid; ///< upper case, with hyphens, no braces

    /// Hash of a text, seeded anew at every start of the program.
    std::function<std::uint64_t(const std::string&)> textHash;

    std::shared_ptr<ProcessRunner> processes;
    std::shared_ptr<HttpClient> http;

    /// The machine's own clock, tools, network and randomness.
    [[nodiscard]] static Platform ofThisMachine();
};

} // namespace zuvo
