#include "ui/LiveCaption.h"

#include "base/Files.h"
#include "base/Json.h"
#include "model/FileLimits.h"

#include <algorithm>
#include <utility>

namespace zuvo {

namespace {

constexpr std::size_t wordsInSight = 7;
constexpr std::size_t wordsBefore = 3;

std::vector<WordTimestampData> wordsOf(const Json& list) {
    std::vector<WordTimestampData> words;
    for (const auto& entry : list) {
        auto word = readText(entry, "word");
        const auto start = readNumber(entry, "start");
        const auto end = readNumber(entry, "end");
        if (word && start && end)
            words.push_back({QUuid::createUuid(), *std::move(word), *start, *end});
    }
    return words;
}

} // namespace

std::optional<WordTimestampsCache> loadWordTimestamps(const std::string& cacheFolder) {
    const auto text = readFile(cacheFolder + "/word_timestamps.json", FileLimits::wordTimestamps);
    const auto json = text ? parseForeignJson(*text) : std::nullopt;
    if (!json || !json->is_array())
        return std::nullopt;
    WordTimestampsCache cache;
    for (const auto& entry : *json) {
        const auto index = readInteger(entry, "segmentIndex");
        if (!index)
            continue;
        const auto words = entry.find("words");
        if (words != entry.end() && words->is_array())
            cache[*index] = wordsOf(*words);
    }
    return cache;
}

std::optional<std::size_t> activeIndex(const std::vector<WordTimestampData>& words, double currentTime) {
    for (auto i = words.size(); i > 0; --i) {
        if (words[i - 1].start <= currentTime)
            return i - 1;
    }
    return std::nullopt;
}

WordRange visibleRange(std::size_t wordCount, std::optional<std::size_t> active) {
    const auto a = active.value_or(0);
    WordRange range;
    range.start = a > wordsBefore ? a - wordsBefore : 0;
    range.end = std::min(wordCount, range.start + wordsInSight);
    range.start = range.end > wordsInSight ? range.end - wordsInSight : 0;
    return range;
}

} // namespace zuvo
