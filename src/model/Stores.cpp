#include "model/Stores.h"

#include "base/Numbers.h"

namespace zuvo {

std::string SavedProject::id() const {
    return timeline + "_" + std::to_string(truncated(createdAt));
}

std::vector<CachedSegment> cachedSegments(const TranscriptResult& transcript) {
    std::vector<CachedSegment> cached;
    cached.reserve(transcript.segments.size());
    for (const auto& line : transcript.segments)
        cached.push_back({line.start, line.end, line.text});
    return cached;
}

TranscriptResult transcriptFrom(const std::vector<CachedSegment>& segments, const std::string& language) {
    TranscriptResult transcript{{}, language};
    transcript.segments.reserve(segments.size());
    for (const auto& segment : segments)
        transcript.segments.push_back({segment.start, segment.end, segment.text, language});
    return transcript;
}

} // namespace zuvo
