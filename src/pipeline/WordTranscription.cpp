// The selected moments once more, word by word: timing by line is too coarse for subtitle cards that follow the voice.

#include "base/Numbers.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"

namespace zuvo {

namespace {

std::vector<WordTimestamp> timestamps(const std::vector<WhisperWord>& words) {
    std::vector<WordTimestamp> result;
    result.reserve(words.size());
    for (const auto& word : words)
        result.push_back({word.word, word.start, word.end});
    return result;
}

} // namespace

QCoro::Task<std::vector<WordSegment>> LocalPipeline::wordLevelTranscribe(MiningResults analysis,
                                                                         std::vector<std::string> /*mediaPaths*/,
                                                                         std::string language) {
    const auto self = shared_from_this();
    std::vector<WordSegment> collected;
    const auto audio = cacheFile("extracted_audio.wav");
    if (!fileExists(audio)) {
        log("  No extracted audio for word-level transcription", LogColor::dim);
        co_return collected;
    }
    const auto count = analysis.segments.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (m_cancelled)
            break;
        log("  Word transcribing segment " + std::to_string(i + 1) + "/" + std::to_string(count) + "...",
            LogColor::dim);
        const auto& segment = analysis.segments[i];
        // Numbered by position: the story's own numbers may repeat.
        const auto cut = m_platform.environment.cacheFolder() + "/word_seg_" + std::to_string(i) + ".wav";
        std::vector<std::string> args = {"-y",
                                         "-i",
                                         audio,
                                         "-ss",
                                         plainText(segment.startTime),
                                         "-t",
                                         plainText(segment.endTime - segment.startTime),
                                         "-ac",
                                         "1",
                                         "-ar",
                                         "16000",
                                         "-acodec",
                                         "pcm_s16le",
                                         cut};
        makePrivate(cut); // one that is there keeps its mode
        const bool wasCut = co_await runProcess(m_platform.environment.tools.ffmpeg, std::move(args));
        if (m_cancelled)
            break; // before the paid request
        if (!wasCut)
            continue;
        const auto words = co_await transcribeWithWords(cut, language);
        if (words)
            collected.push_back({segment.index, timestamps(*words)});
    }
    co_return collected;
}

QCoro::Task<std::optional<std::vector<WhisperWord>>> LocalPipeline::transcribeWithWords(std::string path,
                                                                                        std::string language) {
    const auto answer = co_await postAudio(std::move(path), std::move(language), TimestampGranularity::word);
    if (!answer || !answer->isSuccess())
        co_return std::nullopt;
    co_return readTimedWords(answer->body);
}

void LocalPipeline::cacheWordTimestamps(const std::vector<WordSegment>& segments) {
    if (segments.empty())
        return;
    writePromised(cacheFile("word_timestamps.json"), wordTimestampsText(segments));
}

} // namespace zuvo
