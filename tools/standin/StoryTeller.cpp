#include "standin/StoryTeller.h"

#include "base/Text.h"
#include "standin/Reading.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>

namespace zuvo::standin {
namespace {

constexpr double shortestPassage = 8.0;
constexpr double longestPassage = 30.0;
constexpr double idealPassage = 25.0; // longer runs of loud lines are cut into pieces of at most about this
constexpr double longestPause = 2.0;  // a longer silence between two lines ends a run
constexpr std::size_t wordsOnACard = 7;
constexpr std::array actTitles{"Act 1: Beginnings", "Act 2: The Turn", "Act 3: Where It Leads"};

double rounded(double seconds) {
    return std::round(seconds * 100.0) / 100.0;
}

double length(const Passage& passage) {
    return passage.end - passage.start;
}

std::optional<AnnotatedLine> readLine(std::string_view text) {
    AnnotatedLine line;
    if (!take(text, "[") || !takeNumber(text, line.start) || !take(text, "-") || !takeNumber(text, line.end) ||
        !take(text, "s] "))
        return std::nullopt;
    if (take(text, "🔊 "))
        line.loudness = Loudness::loud;
    else if (take(text, "🔉 "))
        line.loudness = Loudness::medium;
    else if (!take(text, "🔇 "))
        return std::nullopt;
    line.text = text;
    return line;
}

std::optional<double> readTarget(std::string_view prompt) {
    constexpr std::string_view label = "Target edit: ";
    const std::size_t at = prompt.find(label);
    if (at == std::string_view::npos)
        return std::nullopt;
    std::string_view rest = prompt.substr(at + label.size());
    double minutes = 0.0;
    double seconds = 0.0;
    if (!takeNumber(rest, minutes) || !take(rest, " min (") || !takeNumber(rest, seconds) || !take(rest, "s)"))
        return std::nullopt;
    return seconds;
}

/// Neighbouring loud lines, however long together.
std::vector<std::vector<AnnotatedLine>> loudRuns(const std::vector<AnnotatedLine>& lines) {
    std::vector<std::vector<AnnotatedLine>> runs;
    const AnnotatedLine* previous = nullptr;
    for (const AnnotatedLine& line : lines) {
        if (line.loudness != Loudness::loud || line.end <= line.start) {
            previous = nullptr;
            continue;
        }
        if (previous == nullptr || line.start - previous->end > longestPause || line.start < previous->start)
            runs.emplace_back();
        runs.back().push_back(line);
        previous = &line;
    }
    return runs;
}

/// Cuts a run between lines into pieces of nearly equal length; those outside 8 to 30 s are dropped.
void cutRun(const std::vector<AnnotatedLine>& run, std::vector<Passage>& passages) {
    const double whole = run.back().end - run.front().start;
    const double piece = whole <= longestPassage ? whole : whole / std::ceil(whole / idealPassage);
    Passage current;
    const auto close = [&] {
        if (!current.lines.empty() && length(current) >= shortestPassage && length(current) <= longestPassage)
            passages.push_back(current);
        current = {};
    };
    for (const AnnotatedLine& line : run) {
        if (!current.lines.empty() && line.end - current.start > longestPassage)
            close();
        if (current.lines.empty())
            current.start = line.start;
        current.end = line.end;
        current.lines.push_back(line);
        if (length(current) >= piece)
            close();
    }
    close();
}

std::string textOf(const Passage& passage) {
    std::vector<std::string> texts;
    for (const AnnotatedLine& line : passage.lines)
        texts.push_back(line.text);
    return join(texts, " ");
}

/// The word that is most the passage's own: it occurs nowhere else if possible, and is long.
std::string chapterName(const Passage& passage, const std::map<std::string, int>& countsOfAll, std::size_t number) {
    std::string best;
    double bestShare = 0.0;
    for (const auto& [word, count] : countWords(textOf(passage))) {
        const double share = static_cast<double>(count) / countsOfAll.at(word);
        const std::size_t letters = characterCount(word);
        if (letters < tellingLetters || share < bestShare || (share == bestShare && letters <= characterCount(best)))
            continue;
        best = word;
        bestShare = share;
    }
    if (best.empty())
        return "Chapter " + std::to_string(number + 1);
    if (best.front() >= 'a' && best.front() <= 'z')
        best.front() = static_cast<char>(best.front() - 'a' + 'A');
    return best;
}

OrderedJson segmentsOf(const std::vector<Passage>& passages) {
    std::string everything;
    for (const Passage& passage : passages)
        everything += textOf(passage) + " ";
    const auto counts = countWords(everything);
    OrderedJson segments = OrderedJson::array();
    for (std::size_t index = 0; index < passages.size(); ++index) {
        const std::string text = textOf(passages[index]);
        OrderedJson segment;
        segment["index"] = index;
        segment["startTime"] = passages[index].start;
        segment["endTime"] = passages[index].end;
        segment["sourceClip"] = "source";
        segment["transcript"] = text;
        segment["translation"] = text;
        segment["chapter"] = chapterName(passages[index], counts, index);
        segments.push_back(std::move(segment));
    }
    return segments;
}

OrderedJson actsOf(std::size_t segmentCount) {
    const std::size_t actCount = std::min(segmentCount, actTitles.size());
    OrderedJson acts = OrderedJson::array();
    for (std::size_t act = 0; act < actCount; ++act) {
        OrderedJson numbers = OrderedJson::array();
        for (std::size_t index = act * segmentCount / actCount; index < (act + 1) * segmentCount / actCount; ++index)
            numbers.push_back(index);
        OrderedJson entry;
        entry["name"] = actTitles[act];
        entry["segments"] = std::move(numbers);
        acts.push_back(std::move(entry));
    }
    return acts;
}

void addCards(const AnnotatedLine& line, OrderedJson& cards) {
    const std::vector<std::string_view> words = splitAtBlanks(line.text);
    const std::size_t count = (words.size() + wordsOnACard - 1) / wordsOnACard;
    for (std::size_t card = 0; card < count; ++card) {
        const std::size_t first = card * words.size() / count;
        const std::size_t last = (card + 1) * words.size() / count;
        const double share = (line.end - line.start) / static_cast<double>(words.size());
        OrderedJson entry;
        entry["startTime"] = rounded(line.start + share * static_cast<double>(first));
        entry["endTime"] = rounded(line.start + share * static_cast<double>(last));
        std::vector<std::string> shown(words.begin() + static_cast<std::ptrdiff_t>(first),
                                       words.begin() + static_cast<std::ptrdiff_t>(last));
        entry["text"] = join(shown, " ");
        cards.push_back(std::move(entry));
    }
}

} // namespace

std::optional<StoryRequest> readStoryPrompt(std::string_view prompt) {
    const auto target = readTarget(prompt);
    if (!target)
        return std::nullopt;
    StoryRequest request{*target, {}};
    for (const std::string_view text : split(prompt, '\n'))
        if (auto line = readLine(text))
            request.lines.push_back(std::move(*line));
    return request.lines.empty() ? std::nullopt : std::optional(request);
}

std::vector<Passage> findPassages(const std::vector<AnnotatedLine>& lines) {
    std::vector<Passage> passages;
    for (const auto& run : loudRuns(lines))
        cutRun(run, passages);
    return passages;
}

std::vector<Passage> choosePassages(std::vector<Passage> passages, double targetSeconds) {
    std::stable_sort(passages.begin(), passages.end(),
                     [](const Passage& a, const Passage& b) { return length(a) > length(b); });
    std::vector<Passage> chosen;
    double left = targetSeconds;
    for (Passage& passage : passages) {
        while (!passage.lines.empty() && length(passage) > left) {
            passage.lines.pop_back();
            passage.end = passage.lines.empty() ? passage.start : passage.lines.back().end;
        }
        if (passage.lines.empty() || length(passage) < shortestPassage)
            continue;
        left -= length(passage);
        chosen.push_back(std::move(passage));
    }
    std::stable_sort(chosen.begin(), chosen.end(),
                     [](const Passage& a, const Passage& b) { return a.start < b.start; });
    return chosen;
}

OrderedJson tellStory(const StoryRequest& request) {
    const std::vector<Passage> passages = choosePassages(findPassages(request.lines), request.targetSeconds);
    const double total = rounded(std::accumulate(passages.begin(), passages.end(), 0.0,
                                                 [](double sum, const Passage& p) { return sum + length(p); }));
    OrderedJson cards = OrderedJson::array();
    for (const Passage& passage : passages)
        for (const AnnotatedLine& line : passage.lines)
            addCards(line, cards);
    OrderedJson story;
    story["segments"] = segmentsOf(passages);
    story["structure"]["acts"] = actsOf(passages.size());
    story["structure"]["totalDuration"] = total;
    story["subtitles"] = std::move(cards);
    story["estimatedDuration"] = total;
    return story;
}

} // namespace zuvo::standin
