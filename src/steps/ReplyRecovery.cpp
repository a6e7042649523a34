#include "steps/ReplyRecovery.h"

#include "base/Text.h"

namespace zuvo {

namespace {

constexpr std::string_view fence = "```";

/// What stands in for a source that the reply did not name; the clip map replaces it.
constexpr const char* unnamedSource = "source";
constexpr const char* unnamedAct = "Untitled";

/// Without the first line and without the fences at the tail. A fence in the middle stays.
std::string withoutFence(std::string_view text) {
    auto lines = split(text, '\n');
    lines.erase(lines.begin());
    while (!lines.empty() && trimBlanks(lines.back()).starts_with(fence))
        lines.pop_back();
    std::string joined;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0)
            joined += '\n';
        joined += lines[i];
    }
    return joined;
}

std::vector<StorySegment> salvagedSegments(const std::vector<const Json*>& elements) {
    std::vector<StorySegment> segments;
    for (std::size_t offset = 0; offset < elements.size(); ++offset) {
        const auto& element = *elements[offset];
        const auto startTime = readNumber(element, "startTime");
        const auto endTime = readNumber(element, "endTime");
        if (!startTime || !endTime)
            continue;
        StorySegment segment;
        segment.index = readInteger(element, "index").value_or(static_cast<std::int64_t>(offset));
        segment.startTime = *startTime;
        segment.endTime = *endTime;
        segment.sourceClip = readText(element, "sourceClip").value_or(unnamedSource);
        segment.transcript = readText(element, "transcript").value_or("");
        segment.translation = readText(element, "translation").value_or("");
        segment.chapter = readText(element, "chapter");
        segments.push_back(std::move(segment));
    }
    return segments;
}

/// The integers under the key; none if one element is of another kind.
std::vector<std::int64_t> readIntegers(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_array())
        return {};
    std::vector<std::int64_t> integers;
    for (const auto& element : *found) {
        const auto integer = asInteger(element);
        if (!integer)
            return {};
        integers.push_back(*integer);
    }
    return integers;
}

std::vector<Act> salvagedActs(const Json& reply) {
    const auto structure = reply.find("structure");
    if (structure == reply.end())
        return {};
    std::vector<Act> acts;
    for (const auto* element : readObjects(*structure, "acts").value_or(std::vector<const Json*>{}))
        acts.push_back({readText(*element, "name").value_or(unnamedAct), readIntegers(*element, "segments")});
    return acts;
}

std::vector<Subtitle> salvagedSubtitles(const Json& reply) {
    std::vector<Subtitle> subtitles;
    for (const auto* element : readObjects(reply, "subtitles").value_or(std::vector<const Json*>{})) {
        const auto startTime = readNumber(*element, "startTime");
        const auto endTime = readNumber(*element, "endTime");
        auto text = readText(*element, "text");
        if (startTime && endTime && text)
            subtitles.push_back({*startTime, *endTime, std::move(*text)});
    }
    return subtitles;
}

} // namespace

std::string cleanReply(std::string_view reply) {
    auto text = trimWhiteSpace(reply);
    if (text.starts_with(fence))
        text = withoutFence(text);
    const auto first = text.find('{');
    const auto last = text.rfind('}');
    if (first == std::string::npos || last == std::string::npos || last < first)
        return text;
    return text.substr(first, last - first + 1);
}

std::optional<MiningResults> tryManualParse(std::string_view text) {
    const auto reply = parseForeignJson(text);
    if (!reply)
        return std::nullopt;
    const auto elements = readObjects(*reply, "segments");
    if (!elements)
        return std::nullopt;
    MiningResults results;
    results.segments = salvagedSegments(*elements);
    if (results.segments.empty())
        return std::nullopt;
    double total = 0.0;
    for (const auto& segment : results.segments)
        total += segment.endTime - segment.startTime;
    results.structure = {salvagedActs(*reply), total};
    results.subtitles = salvagedSubtitles(*reply);
    results.estimatedDuration = readNumber(*reply, "estimatedDuration").value_or(total);
    return results;
}

} // namespace zuvo
