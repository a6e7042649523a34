#include "exporters/OffsetMap.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>

namespace zuvo::exporters {

namespace {

double startSeconds(const MediaFileInfo& file) {
    return timecodeToSeconds(file.startTimecode).value_or(0.0);
}

SourceTime placeIn(const OffsetEntry& entry, double sequentialTime, SourceOrigin origin) {
    const double fromFirstSample = sequentialTime - entry.seqStart;
    return {entry.filename, origin == SourceOrigin::fileTimecode ? entry.bwfStart + fromFirstSample : fromFirstSample};
}

} // namespace

std::optional<double> timecodeToSeconds(const std::optional<std::string>& text, double fps) {
    if (!text)
        return std::nullopt;
    std::vector<double> numbers;
    for (const auto piece : split(*text, ':')) {
        if (const auto number = parseInteger(piece))
            numbers.push_back(static_cast<double>(*number));
    }
    if (numbers.size() < 3)
        return std::nullopt;
    const double frames = numbers.size() > 3 ? numbers[3] : 0.0;
    return numbers[0] * 3600.0 + numbers[1] * 60.0 + numbers[2] + frames / fps;
}

OffsetMap buildOffsetMap(const std::vector<MediaFileInfo>& mediaFiles) {
    OffsetMap map;
    map.reserve(mediaFiles.size());
    for (const auto& file : mediaFiles)
        map.push_back({file.filename, 0.0, file.duration, startSeconds(file)});
    std::stable_sort(map.begin(), map.end(),
                     [](const OffsetEntry& a, const OffsetEntry& b) { return a.bwfStart < b.bwfStart; });
    double offset = 0.0;
    for (auto& entry : map) {
        entry.seqStart = offset;
        entry.seqEnd += offset;
        offset = entry.seqEnd;
    }
    return map;
}

std::optional<SourceTime> resolveSourceTime(double sequentialTime, const OffsetMap& offsetMap, SourceOrigin origin) {
    const auto found = std::find_if(offsetMap.begin(), offsetMap.end(), [&](const OffsetEntry& entry) {
        return entry.seqStart <= sequentialTime && sequentialTime < entry.seqEnd;
    });
    if (found != offsetMap.end())
        return placeIn(*found, sequentialTime, origin);
    if (!offsetMap.empty() && offsetMap.back().seqStart <= sequentialTime)
        return placeIn(offsetMap.back(), sequentialTime, origin);
    return std::nullopt;
}

} // namespace zuvo::exporters
