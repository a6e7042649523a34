#pragma once

#include <array>
#include <string_view>

namespace zuvo {

/// The steps of the guided flow, in its order.
enum class MineStep { setup = 0, style = 1, processing = 2, review = 3, done = 4 };

inline constexpr std::array allMineSteps = {MineStep::setup, MineStep::style, MineStep::processing, MineStep::review,
                                            MineStep::done};

/// What the step is called on screen.
[[nodiscard]] constexpr std::string_view label(MineStep step) {
    switch (step) {
    case MineStep::setup:
        return "Into the Mine";
    case MineStep::style:
        return "The Lantern";
    case MineStep::processing:
        return "The Dig";
    case MineStep::review:
        return "The Discovery";
    case MineStep::done:
        break;
    }
    return "Daylight";
}

} // namespace zuvo
