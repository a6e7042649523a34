#pragma once

#include "base/Fields.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace zuvo {

struct StorySegment;

/// One edit of the story, as the log of edits keeps it.
struct ReviewAction {
    std::string action;     ///< "delete" or "reorder"
    double timestamp = 0.0; ///< seconds since 1970
    std::optional<std::int64_t> segmentId;
    std::optional<std::string> segmentLabel; ///< set by neither edit
    std::optional<std::string> detail;

    static constexpr auto fields() {
        using S = ReviewAction;
        return std::tuple(Field{"action", &S::action}, Field{"timestamp", &S::timestamp},
                          Field{"segmentId", &S::segmentId}, Field{"segmentLabel", &S::segmentLabel},
                          Field{"detail", &S::detail});
    }
};

/// The record of a deletion; `position` counts from 0.
[[nodiscard]] ReviewAction deletion(const StorySegment& segment, std::size_t position, double timestamp);

/// The record of a move; the positions count from 0.
[[nodiscard]] ReviewAction reordering(const StorySegment& segment, std::size_t from, std::size_t to, double timestamp);

/// "{home}/Library/Application Support/ZuvoManager/review_actions.json"
[[nodiscard]] std::string reviewActionsFile(const std::string& home);

/// Puts the actions behind those that the file holds; a file that is no list begins anew. Without actions nothing is
/// written. Failures are silent: the log decides nothing.
void saveReviewActions(const std::string& home, const std::vector<ReviewAction>& actions);

} // namespace zuvo
