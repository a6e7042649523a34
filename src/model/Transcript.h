#pragma once

#include "base/Fields.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zuvo {

/// One line of transcript.
struct TranscriptSegment {
    double start = 0.0; ///< seconds in mine time; shifted when chunks are merged
    double end = 0.0;   ///< seconds in mine time
    std::string text;
    std::string language; ///< as the service reported it, else "unknown"
};

/// All that was said, in the order of mine time.
struct TranscriptResult {
    std::vector<TranscriptSegment> segments;
    std::string language; ///< of its first line
};

/// The language of a transcript whose service named none.
inline constexpr const char* unknownLanguage = "unknown";

/// A timed segment of a service answer, seconds from the start of the audio that was sent.
struct WhisperSegment {
    double start = 0.0;
    double end = 0.0;
    std::string text;

    static constexpr auto fields() {
        using S = WhisperSegment;
        return std::tuple(Field{"start", &S::start}, Field{"end", &S::end}, Field{"text", &S::text});
    }
};

/// The decoded answer of the transcription service.
struct WhisperResponse {
    std::string text;
    std::optional<std::string> language;
    std::vector<WhisperSegment> segments;

    /// Each segment in order with its times and text as they stand, and the answer's language, or "unknown".
    [[nodiscard]] std::vector<TranscriptSegment> asTranscriptSegments() const;

    static constexpr auto fields() {
        using S = WhisperResponse;
        return std::tuple(Field{"text", &S::text}, Field{"language", &S::language}, Field{"segments", &S::segments});
    }
};

/// One timed word of a service answer, seconds from the start of the audio that was sent.
struct WhisperWord {
    std::string word;
    double start = 0.0;
    double end = 0.0;
};

/// One timed word of a selected moment, seconds from the moment's own start.
struct WordTimestamp {
    std::string word;
    double start = 0.0;
    double end = 0.0;
};

/// The words of one selected moment.
struct WordSegment {
    std::int64_t segmentIndex = 0; ///< a `StorySegment::index`
    std::vector<WordTimestamp> words;
};

} // namespace zuvo
