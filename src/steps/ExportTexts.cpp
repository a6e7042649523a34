#include "steps/ExportTexts.h"

#include "base/Numbers.h"
#include "base/Text.h"
#include "steps/Probing.h"

#include <algorithm>
#include <fmt/format.h>
#include <span>
#include <string_view>

namespace zuvo {

// subtitles.srt is a list of cards, numbered from 1:
//
//     {number}\n
//     {HH:MM:SS,mmm} --> {HH:MM:SS,mmm}\n
//     {words joined by blanks}\n
//     \n

namespace {

using Words = std::vector<std::string_view>;

/// A card with this many words closes at once.
constexpr std::size_t fullCardWords = 5;
/// A card with this many words closes at the next pause; fewer words wait for more.
constexpr std::size_t smallestCardWords = 3;
/// Silence between two spoken words that counts as a pause (seconds).
constexpr double pauseSeconds = 0.3;
/// Stands for the silence behind the last spoken word (seconds).
constexpr double gapAfterLastWord = 999.0;
/// How far behind the end of the moment a spoken word may end and still count (seconds): the service's times overshoot.
constexpr double wordOvershoot = 1.0;

/// Reading time of a card where no word times are known (seconds).
constexpr double evenCardSeconds = 3.5;
/// How late a card of the even method comes up after its share of the moment has begun (seconds).
constexpr double evenCardDelay = 0.3;
/// How much shorter than its share a card of the even method stands (seconds).
constexpr double evenCardTrim = 0.2;

/// A moment on the finished cut.
struct CutSpan {
    double offset;   ///< seconds, where it begins on the cut
    double duration; ///< seconds

    [[nodiscard]] double end() const { return offset + duration; }
};

class CardWriter {
public:
    /// Times in seconds on the finished cut.
    void write(double start, double end, std::span<const std::string_view> words) {
        const std::vector<std::string> pieces(words.begin(), words.end());
        m_text += fmt::format("{}\n{} --> {}\n{}\n\n", m_number, srtTime(start), srtTime(end), join(pieces, " "));
        ++m_number;
    }

    [[nodiscard]] std::string takeText() { return std::move(m_text); }

private:
    std::string m_text;
    std::size_t m_number = 1;
};

std::vector<WordTimestamp> wordsWithin(const std::vector<WordTimestamp>& words, double duration) {
    std::vector<WordTimestamp> within;
    std::copy_if(words.begin(), words.end(), std::back_inserter(within),
                 [&](const WordTimestamp& word) { return word.end <= duration + wordOvershoot; });
    return within;
}

/// Hands out the display words in step with the spoken ones: at each tick as many as are due, so that both run out
/// together. More spoken words than display words: one a tick until they are used up.
class WordDispenser {
public:
    WordDispenser(const Words& words, std::size_t ticks)
        : m_words(words),
          m_count(static_cast<double>(words.size())),
          m_ratio(ticks == 0 ? 1.0 : std::max(1.0, m_count / static_cast<double>(ticks))) {}

    void tick(Words& card) {
        const double next = std::min(m_count, m_position + m_ratio);
        const auto low = wordsBefore(m_position);
        const auto high = std::min(wordsBefore(next), m_words.size());
        for (auto i = low; i < high; ++i)
            card.push_back(m_words[i]);
        m_position = next;
    }

    /// What no tick has handed out.
    [[nodiscard]] std::span<const std::string_view> rest() const {
        return std::span(m_words).subspan(std::min(wordsBefore(m_position), m_words.size()));
    }

private:
    /// A position is never negative, so its whole part is a number of words.
    static std::size_t wordsBefore(double position) { return static_cast<std::size_t>(truncated(position)); }

    const Words& m_words;
    double m_count;
    double m_ratio;
    double m_position = 0.0; ///< a fractional index into the words
};

/// Whether the pause behind timed word `i`, or the fullness of the card, ends the card there.
bool cardCloses(const Words& card, const std::vector<WordTimestamp>& timed, std::size_t i) {
    const bool last = i + 1 == timed.size();
    const double gap = last ? gapAfterLastWord : timed[i + 1].start - timed[i].end;
    return card.size() >= fullCardWords || (card.size() >= smallestCardWords && gap > pauseSeconds) || last;
}

/// The cards follow the voice. Their words come from the display text, which may be a translation with another number
/// of words, so the spoken words serve as a clock only.
void writeSpokenCards(CardWriter& writer, const CutSpan& span, const Words& textWords,
                      const std::vector<WordTimestamp>& words) {
    const auto timed = wordsWithin(words, span.duration);
    WordDispenser dispenser(textWords, timed.size());
    Words card;
    double cardStart = 0.0;
    double cardEnd = 0.0;
    for (std::size_t i = 0; i < timed.size(); ++i) {
        if (card.empty())
            cardStart = span.offset + timed[i].start;
        cardEnd = span.offset + timed[i].end;
        dispenser.tick(card);
        if (cardCloses(card, timed, i) && !card.empty()) {
            writer.write(cardStart, std::min(cardEnd, span.end()), card);
            card.clear();
        }
    }
    // Words are left over if rounding kept the last ones back, or if there was no spoken word at all.
    if (const auto rest = dispenser.rest(); !rest.empty())
        writer.write(cardEnd, span.end(), rest);
}

/// The cards share the moment evenly. Their number is bounded by the number of words, whatever the duration.
void writeEvenCards(CardWriter& writer, const CutSpan& span, const Words& textWords) {
    if (textWords.empty())
        return;
    const auto cards = static_cast<std::size_t>(std::max<std::int64_t>(1, truncated(span.duration / evenCardSeconds)));
    const auto wordsPerCard = std::max(smallestCardWords, textWords.size() / cards);
    const auto cardCount = std::max<std::size_t>(1, (textWords.size() + wordsPerCard - 1) / wordsPerCard);
    const double cardDuration = span.duration / static_cast<double>(cardCount);
    for (std::size_t k = 0; k < cardCount; ++k) {
        const double start = span.offset + static_cast<double>(k) * cardDuration + evenCardDelay;
        const double plannedEnd = start + cardDuration - evenCardTrim;
        const auto first = k * wordsPerCard;
        const auto count = std::min(wordsPerCard, textWords.size() - first);
        writer.write(start, std::min(plannedEnd, span.end()), std::span(textWords).subspan(first, count));
    }
}

/// The words of the first entry for this moment, empty if there is none.
const std::vector<WordTimestamp>& wordsOf(const StorySegment& segment, const std::vector<WordSegment>& wordSegments) {
    static const std::vector<WordTimestamp> none;
    const auto found = std::find_if(wordSegments.begin(), wordSegments.end(), [&](const WordSegment& candidate) {
        return candidate.segmentIndex == segment.index;
    });
    return found == wordSegments.end() ? none : found->words;
}

std::string actText(const Act& act) {
    std::vector<std::string> numbers;
    for (const auto number : act.segments)
        numbers.push_back(std::to_string(number));
    return "### " + act.name + "\nSegments: " + join(numbers, ", ") + "\n\n";
}

std::string segmentText(const StorySegment& segment) {
    auto text = fmt::format("**[{} → {}]** {}\n> {}\n", formatTimestamp(segment.startTime),
                            formatTimestamp(segment.endTime), segment.chapter.value_or(""), segment.transcript);
    if (segment.translation != segment.transcript)
        text += "> _" + segment.translation + "_\n";
    return text + "\n";
}

} // namespace

std::string formatTimestamp(double seconds) {
    return formatDuration(seconds);
}

std::string srtTime(double seconds) {
    const auto whole = truncated(seconds);
    const auto milliseconds = truncated((seconds - static_cast<double>(whole)) * 1000.0);
    return fmt::format("{:02d}:{:02d}:{:02d},{:03d}", whole / 3600, whole % 3600 / 60, whole % 60, milliseconds);
}

std::string subtitlesText(const std::vector<StorySegment>& segments, const std::vector<WordSegment>& wordSegments) {
    CardWriter writer;
    double offset = 0.0;
    for (const auto& segment : segments) {
        const CutSpan span{offset, segment.endTime - segment.startTime};
        const auto textWords = splitAtBlanks(segment.translation.empty() ? segment.transcript : segment.translation);
        const auto& words = wordsOf(segment, wordSegments);
        if (words.empty())
            writeEvenCards(writer, span, textWords);
        else
            writeSpokenCards(writer, span, textWords, words);
        offset += span.duration;
    }
    return writer.takeText();
}

std::string transcriptText(const TranscriptResult& transcript) {
    std::string text = "# Full Transcript\n\n";
    for (const auto& line : transcript.segments)
        text += "[" + formatTimestamp(line.start) + "] " + line.text + "\n";
    return text;
}

std::string storyBriefText(const std::string& timeline, const MiningResults& analysis, const std::string& date) {
    auto text = "# Story Brief — " + timeline + "\n\nGenerated by Zuvo on " + date + "\n\n## Structure\n\n";
    for (const auto& act : analysis.structure.acts)
        text += actText(act);
    text += "## Segments\n\n";
    for (const auto& segment : analysis.segments)
        text += segmentText(segment);
    return text;
}

} // namespace zuvo
