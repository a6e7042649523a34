#pragma once

#include <QUuid>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zuvo {

/// A spoken word of a moment.
struct WordTimestampData {
    QUuid id = QUuid::createUuid();
    std::string word;
    double start = 0.0; ///< seconds from the moment's start
    double end = 0.0;   ///< seconds from the moment's start
};

/// Words by the number of their segment.
using WordTimestampsCache = std::map<std::int64_t, std::vector<WordTimestampData>>;

/// What word_timestamps.json in the cache folder holds. Entries without their number or list, and words without their
/// text or a time, are left out. Nothing if the file cannot be read or is no list.
[[nodiscard]] std::optional<WordTimestampsCache> loadWordTimestamps(const std::string& cacheFolder);

/// The words in sight, the end not included.
struct WordRange {
    std::size_t start = 0;
    std::size_t end = 0;
};

/// The last word that has begun by then; nothing before the first one.
[[nodiscard]] std::optional<std::size_t> activeIndex(const std::vector<WordTimestampData>& words, double currentTime);

/// Seven words around the active one, three of them before it; fewer only if there are no more.
[[nodiscard]] WordRange visibleRange(std::size_t wordCount, std::optional<std::size_t> active);

} // namespace zuvo
