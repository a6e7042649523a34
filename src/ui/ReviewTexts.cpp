#include "ui/ReviewTexts.h"

#include "base/Numbers.h"
#include "model/MiningResults.h"

#include <cstdint>
#include <map>

namespace zuvo {

namespace {

constexpr std::int64_t secondsPerMinute = 60;

} // namespace

QString review::formatTime(double seconds) {
    const auto whole = truncated(seconds);
    return QStringLiteral("%1:%2").arg(whole / secondsPerMinute).arg(whole % secondsPerMinute, 2, 10, QLatin1Char('0'));
}

QString review::formatDuration(double seconds) {
    return QString::number(truncated(seconds)) + QLatin1Char('s');
}

double totalDuration(const std::vector<StorySegment>& segments) {
    double sum = 0.0;
    for (const auto& segment : segments)
        sum += segment.endTime - segment.startTime;
    return sum;
}

std::vector<std::optional<int>> chapterGems(const std::vector<StorySegment>& segments) {
    std::map<std::string, int> gems;
    std::vector<std::optional<int>> ofSegments;
    for (const auto& segment : segments) {
        if (!segment.chapter || segment.chapter->empty()) {
            ofSegments.emplace_back();
            continue;
        }
        const auto next = static_cast<int>(gems.size()) % chapterGemCount;
        ofSegments.emplace_back(gems.try_emplace(*segment.chapter, next).first->second);
    }
    return ofSegments;
}

} // namespace zuvo
