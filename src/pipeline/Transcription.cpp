// The audio chunks, one by one, through the transcription service and onto one time line.

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "model/FileLimits.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"
#include "platform/ServiceAddresses.h"

#include <algorithm>

namespace zuvo {

namespace {

/// Transcription moves `progress` from the first to the sum of both.
constexpr double transcriptionStart = 0.15;
constexpr double transcriptionSpan = 0.3;

/// User-perceived characters of an error answer that are shown.
constexpr std::size_t shownErrorCharacters = 200;

std::string bearer(const std::string& key) {
    return "Bearer " + key;
}

} // namespace

QCoro::Task<std::optional<HttpAnswer>> LocalPipeline::postAudio(std::string path, std::string language,
                                                                TimestampGranularity granularity) {
    const auto boundary = m_platform.newUuid();
    const auto frame = transcriptionFrame(boundary, granularity, language, lastPathComponent(path));
    HttpRequest request;
    // One copy of ten megabytes of sound is enough.
    request.body.reserve(frame.head.size() + std::min(fileSize(path).value_or(0), FileLimits::sound) +
                         frame.tail.size());
    request.body.append(frame.head);
    if (!appendFile(path, request.body, FileLimits::sound))
        co_return std::nullopt;
    request.body.append(frame.tail);

    HttpAnswer answer;
    const auto address = transcriptionAddress(m_platform.environment);
    if (address.isRefused()) {
        answer.failure = address.refusal;
        co_return answer;
    }
    request.url = address.url;
    request.headers = {{"Authorization", bearer(openaiKey())}, {"Content-Type", multipartContentType(boundary)}};
    request.timeout = granularity == TimestampGranularity::segment ? m_timeouts.transcription : m_timeouts.words;
    answer = co_await m_platform.http->send(std::move(request));
    co_return answer;
}

QCoro::Task<std::optional<WhisperResponse>> LocalPipeline::transcribeChunk(std::string path, std::string language) {
    const auto self = shared_from_this();
    const auto answer = co_await postAudio(path, language, TimestampGranularity::segment);
    if (!answer)
        co_return std::nullopt;
    if (answer->hasFailed()) {
        log("  Whisper request failed: " + answer->failure, LogColor::accent);
        co_return std::nullopt;
    }
    if (!answer->isSuccess()) {
        const auto text =
            isValidUtf8(answer->body) ? firstCharacters(withoutKeys(answer->body), shownErrorCharacters) : "unknown";
        log("  Whisper error: " + text, LogColor::accent);
        co_return std::nullopt;
    }
    auto decoded = decodeTranscription(answer->body);
    if (!decoded.value)
        logForeign("  Whisper request failed: " + decoded.failure, LogColor::accent);
    co_return decoded.value;
}

QCoro::Task<std::optional<TranscriptResult>> LocalPipeline::transcribe(std::vector<std::string> chunks,
                                                                       std::string language) {
    const auto self = shared_from_this();
    TranscriptResult transcript;
    double timeOffset = 0.0;
    const auto count = chunks.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (m_cancelled)
            co_return std::nullopt;
        setProgress(transcriptionStart + transcriptionSpan * (static_cast<double>(i) / static_cast<double>(count)));
        const auto number = std::to_string(i + 1);
        log("  Transcribing chunk " + number + "/" + std::to_string(count) + "...", LogColor::dim);
        const auto response = co_await transcribeChunk(chunks[i], language);
        if (response) {
            for (auto& line : chunkLines(*response, timeOffset))
                transcript.segments.push_back(std::move(line));
        } else {
            log("  ⚠ Chunk " + number + " failed, skipping", LogColor::accent);
        }
        // Measured, not nominal; and for a failed chunk too, whose span is a silent hole and not a shift.
        timeOffset += co_await getAudioDuration(chunks[i]);
    }
    if (transcript.segments.empty())
        co_return std::nullopt;
    transcript.language = transcript.segments.front().language;
    co_return transcript;
}

} // namespace zuvo
