// All that is written of a story that a model told: the first line is the transcription service's answer by words, the
// rest the model's reply.

#include "Fuzzing.h"
#include "exporters/MediaList.h"
#include "steps/ClipMap.h"
#include "steps/ExportTexts.h"
#include "steps/ReplyRecovery.h"
#include "steps/TranscriptionFormat.h"

#include <cstddef>
#include <string>
#include <vector>

using namespace zuvo;

namespace {

std::vector<WordSegment> wordsOfEveryOther(const std::vector<StorySegment>& segments, std::string_view answer) {
    const auto words = readTimedWords(answer);
    if (!words)
        return {};
    std::vector<WordSegment> all;
    for (std::size_t i = 0; i < segments.size(); i += 2) {
        WordSegment segment;
        segment.segmentIndex = segments[i].index;
        for (const auto& word : *words)
            segment.words.push_back({word.word, word.start, word.end});
        all.push_back(segment);
    }
    return all;
}

} // namespace

ZUVO_FUZZ_TARGET {
    const auto end = text.find('\n');
    if (end == std::string_view::npos)
        return;
    const auto told = tryManualParse(cleanReply(text.substr(end + 1)));
    if (!told)
        return;
    const auto story = withSourceClips(*told, clipMapFromDurations({{"a.wav", 30.0}, {"b.wav", 5.0}, {"c.wav", 60.0}}));
    fuzzing::require(story.segments.size() == told->segments.size());

    // The reply is JSON, which has no infinity: so has what is written of it.
    const auto handOff = segmentsFileText(story.segments);
    fuzzing::require(handOff.has_value());
    const auto list = parseForeignJson(*handOff);
    fuzzing::require(list && list->is_array() && list->size() == story.segments.size());

    // No card without a word.
    const auto cards = subtitlesText(story.segments, wordsOfEveryOther(story.segments, text.substr(0, end)));
    fuzzing::require(cards.empty() || cards.starts_with("1\n"));
    fuzzing::require(cards.find(" --> ") != std::string::npos || cards.empty());
    fuzzing::require(storyBriefText("Cut", story, "today").starts_with("# Story Brief — Cut\n"));
    fuzzing::require(generateMediaFileInfo(std::nullopt, {}, story.segments).size() <= story.segments.size());
}
