#include "model/PipelineLog.h"

#include <fmt/format.h>

namespace zuvo {

PipelineLog PipelineLog::make(std::string text, std::string color, ClockTime time, std::string id) {
    return {std::move(id), fmt::format("{:02}:{:02}", time.minute, time.second), std::move(text), std::move(color)};
}

} // namespace zuvo
