#include "steps/MineVersions.h"

#include "base/Numbers.h"

#include <algorithm>
#include <limits>

namespace zuvo {

namespace {

constexpr std::string_view versionPrefix = "mining_results_v";
constexpr std::string_view versionSuffix = ".json";

} // namespace

std::optional<std::int64_t> mineVersionNumber(std::string_view fileName) {
    if (!fileName.starts_with(versionPrefix))
        return std::nullopt;
    fileName.remove_prefix(versionPrefix.size());
    if (!fileName.ends_with(versionSuffix))
        return std::nullopt;
    fileName.remove_suffix(versionSuffix.size());
    return parseInteger(fileName);
}

std::int64_t nextMineVersionAmong(const std::vector<std::string>& fileNames) {
    std::optional<std::int64_t> highest;
    for (const auto& name : fileNames) {
        if (const auto version = mineVersionNumber(name))
            highest = std::max(*version, highest.value_or(*version));
    }
    if (!highest)
        return 1;
    return *highest == std::numeric_limits<std::int64_t>::max() ? *highest : *highest + 1;
}

} // namespace zuvo
