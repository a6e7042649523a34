#include "steps/ClipMap.h"

#include "base/Numbers.h"
#include "base/Paths.h"
#include "base/Text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace zuvo {

namespace {

/// Sources must be longer than this to have a place on the map (seconds): shorter ones are slates and test shots.
constexpr double longestIgnoredSource = 10.0;

struct ProbedSource {
    std::string name;
    double startTimecodeSeconds;
    double duration; ///< seconds
};

std::optional<ProbedSource> probedSource(const Json& probeCache, const std::string& path) {
    auto name = lastPathComponent(path);
    const auto entry = probeCache.find(name);
    if (entry == probeCache.end())
        return std::nullopt;
    const auto duration = readNumber(*entry, "duration");
    if (!duration)
        return std::nullopt;
    const double start = readNumber(*entry, "startTimecodeSeconds").value_or(0.0);
    return ProbedSource{std::move(name), start, *duration};
}

bool isObjectOfObjects(const Json& tree) {
    return tree.is_object() &&
           std::all_of(tree.begin(), tree.end(), [](const Json& value) { return value.is_object(); });
}

Json segmentForHandOff(const StorySegment& segment) {
    return Json{{"index", segment.index},
                {"startTime", segment.startTime},
                {"endTime", segment.endTime},
                {"sourceClip", segment.sourceClip},
                {"transcript", segment.transcript},
                {"translation", segment.translation},
                {"chapter", segment.chapter ? Json(*segment.chapter) : Json(nullptr)}};
}

} // namespace

std::vector<ClipMapEntry> clipMapFromProbeCache(const Json& probeCache, const std::vector<std::string>& mediaPaths) {
    if (!isObjectOfObjects(probeCache))
        return {};
    std::vector<ProbedSource> sources;
    for (const auto& path : mediaPaths) {
        if (auto source = probedSource(probeCache, path))
            sources.push_back(std::move(*source));
    }
    std::stable_sort(sources.begin(), sources.end(), [](const ProbedSource& a, const ProbedSource& b) {
        return a.startTimecodeSeconds < b.startTimecodeSeconds;
    });
    std::vector<std::pair<std::string, double>> namesWithDurations;
    namesWithDurations.reserve(sources.size());
    for (auto& source : sources)
        namesWithDurations.emplace_back(std::move(source.name), source.duration);
    return clipMapFromDurations(namesWithDurations);
}

std::vector<ClipMapEntry> clipMapFromDurations(const std::vector<std::pair<std::string, double>>& namesWithDurations) {
    std::vector<ClipMapEntry> map;
    double offset = 0.0;
    for (const auto& [name, duration] : namesWithDurations) {
        if (!(duration > longestIgnoredSource))
            continue;
        map.push_back({name, offset, offset + duration});
        offset += duration;
    }
    return map;
}

std::string clipMapLogLine(const std::vector<ClipMapEntry>& map) {
    std::vector<std::string> entries;
    entries.reserve(map.size());
    for (const auto& entry : map)
        entries.push_back(fmt::format("{}: {}s–{}s", entry.name, plainText(std::round(entry.start)),
                                      plainText(std::round(entry.end))));
    return "📋 Source clip map: " + join(entries, ", ");
}

MiningResults withSourceClips(MiningResults analysis, const std::vector<ClipMapEntry>& map) {
    for (auto& segment : analysis.segments) {
        const auto holder = std::find_if(map.begin(), map.end(), [&](const ClipMapEntry& entry) {
            return entry.start <= segment.startTime && segment.startTime < entry.end;
        });
        if (holder != map.end())
            segment.sourceClip = holder->name;
    }
    return analysis;
}

std::optional<std::string> segmentsFileText(const std::vector<StorySegment>& segments) {
    auto list = Json::array();
    for (const auto& segment : segments)
        list.push_back(segmentForHandOff(segment));
    return prettySortedText(list);
}

} // namespace zuvo
