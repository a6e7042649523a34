#pragma once

#include "base/Fields.h"
#include "model/Transcript.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

// The request and answers of the transcription service.

/// What the service is to time: lines, or words.
enum class TimestampGranularity { segment, word };

/// What stands around the bytes of the audio file in the multipart body, so that the file is held once.
struct MultipartFrame {
    std::string head; ///< everything before the file's bytes
    std::string tail; ///< the closing boundary
};

/// The frame of a request. `language` "auto" leaves the language part out; `fileName` is the last path component.
[[nodiscard]] MultipartFrame transcriptionFrame(const std::string& boundary, TimestampGranularity granularity,
                                                const std::string& language, const std::string& fileName);

/// "multipart/form-data; boundary={boundary}"
[[nodiscard]] std::string multipartContentType(const std::string& boundary);

/// The strictly decoded answer to a request by segments.
[[nodiscard]] Decoded<WhisperResponse> decodeTranscription(std::string_view body);

/// The words of an answer to a request by words; an element that lacks its text or a time is dropped. Nothing if the
/// body is no JSON object with a list `words`.
[[nodiscard]] std::optional<std::vector<WhisperWord>> readTimedWords(std::string_view body);

/// The lines of one chunk on the time line of the mine: shifted by `timeOffset` seconds, texts trimmed of white space.
[[nodiscard]] std::vector<TranscriptSegment> chunkLines(const WhisperResponse& response, double timeOffset);

/// word_timestamps.json: a compact list of {segmentIndex, words:[{word, start, end}]}.
[[nodiscard]] std::optional<std::string> wordTimestampsText(const std::vector<WordSegment>& segments);

/// Number of non-empty pieces between blanks, summed over the lines.
[[nodiscard]] std::size_t wordCount(const std::vector<TranscriptSegment>& lines);

} // namespace zuvo
