#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

/// N of "mining_results_v{N}.json", or nothing for any other name.
[[nodiscard]] std::optional<std::int64_t> mineVersionNumber(std::string_view fileName);

/// The highest version among these names plus 1, or 1 if there is none. Gaps are not filled. At the largest 64-bit
/// number the answer stays there.
[[nodiscard]] std::int64_t nextMineVersionAmong(const std::vector<std::string>& fileNames);

} // namespace zuvo
