// The bodies that the transcription service answered with, by segments and by words.

#include "Fuzzing.h"
#include "steps/TranscriptionFormat.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    const auto response = decodeTranscription(text);
    fuzzing::require(response.value.has_value() == response.failure.empty());
    if (response.value) {
        const auto lines = chunkLines(*response.value, 600.0);
        (void)wordCount(lines);
    }
    const auto words = readTimedWords(text);
    if (!words)
        return;
    WordSegment segment;
    for (const auto& word : *words)
        segment.words.push_back({word.word, word.start, word.end});
    (void)wordTimestampsText({segment});
}
