#pragma once

#include "standin/Exchange.h"
#include "standin/SampleKnowledge.h"

#include <string_view>

namespace zuvo::standin {

inline constexpr std::string_view transcriptionPath = "/v1/audio/transcriptions";

/// The answer to a transcription request: verbose_json with segments, words or both, as the form asks for.
/// 401 without a key, 405 for a method other than POST, 400 for a form or a sound that cannot be read; the body then is
/// an error object.
[[nodiscard]] Answer answerTranscription(const RecordedRequest& request, const SampleKnowledge& sample);

/// An error object of this service's form.
[[nodiscard]] Answer transcriptionError(int status, std::string_view type, std::string_view message);

} // namespace zuvo::standin
