#include "model/Transcript.h"

namespace zuvo {

std::vector<TranscriptSegment> WhisperResponse::asTranscriptSegments() const {
    const auto spoken = language.value_or(unknownLanguage);
    std::vector<TranscriptSegment> lines;
    lines.reserve(segments.size());
    for (const auto& segment : segments)
        lines.push_back({segment.start, segment.end, segment.text, spoken});
    return lines;
}

} // namespace zuvo
