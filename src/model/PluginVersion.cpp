#include "model/PluginVersion.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zuvo {

namespace {

std::vector<std::int64_t> numbersOf(std::string_view version) {
    std::vector<std::int64_t> numbers;
    for (const auto piece : split(version, '.')) {
        if (const auto number = parseInteger(piece))
            numbers.push_back(*number);
    }
    return numbers;
}

} // namespace

bool isNewerVersion(std::string_view version, std::string_view other) {
    auto ours = numbersOf(version);
    auto theirs = numbersOf(other);
    const auto length = std::max(ours.size(), theirs.size());
    ours.resize(length, 0);
    theirs.resize(length, 0);
    return ours > theirs;
}

} // namespace zuvo
