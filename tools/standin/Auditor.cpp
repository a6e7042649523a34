#include "standin/Auditor.h"

#include "base/Text.h"
#include "standin/Reading.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace zuvo::standin {

namespace {

constexpr std::size_t mostFindings = 3;      // of each kind
constexpr std::size_t sharedWords = 2;       // two lines that share so many telling words are about the same
constexpr std::size_t leastGoldLetters = 20; // a shorter line is a "yes" or a "hm"
constexpr double heaviestWeight = 5.0;
constexpr double secondsPerWeight = 2.0; // a line of 10 s weighs 5

using Line = const MarkedLine*;

std::optional<MarkedLine> readLine(std::string_view text) {
    MarkedLine line;
    line.isUsed = take(text, "[USED] [");
    if (!line.isUsed && !take(text, "[UNUSED] ["))
        return std::nullopt;
    if (!takeNumber(text, line.start) || !take(text, "s → ") || !takeNumber(text, line.end) || !take(text, "s] "))
        return std::nullopt;
    line.text = text;
    return line;
}

std::optional<double> readCoverage(std::string_view prompt) {
    constexpr std::string_view label = "\"coveragePercent\": ";
    const std::size_t at = prompt.find(label);
    double percent = 0.0;
    if (at == std::string_view::npos)
        return std::nullopt;
    std::string_view rest = prompt.substr(at + label.size());
    return takeNumber(rest, percent) ? std::optional(percent) : std::nullopt;
}

std::vector<Line> linesThatAre(bool used, const AuditRequest& request) {
    std::vector<Line> lines;
    for (const MarkedLine& line : request.lines)
        if (line.isUsed == used)
            lines.push_back(&line);
    return lines;
}

std::set<std::string> tellingWords(std::string_view text) {
    std::set<std::string> telling;
    for (const auto& [word, count] : countWords(text))
        if (characterCount(word) >= tellingLetters)
            telling.insert(word);
    return telling;
}

std::vector<std::string> commonWords(const MarkedLine& a, const MarkedLine& b) {
    const auto ofA = tellingWords(a.text);
    const auto ofB = tellingWords(b.text);
    std::vector<std::string> common;
    std::set_intersection(ofA.begin(), ofA.end(), ofB.begin(), ofB.end(), std::back_inserter(common));
    return common;
}

OrderedJson usedSegments(const std::vector<Line>& used) {
    OrderedJson segments = OrderedJson::array();
    for (const Line line : used)
        segments.push_back({{"startTime", line->start}, {"endTime", line->end}, {"text", line->text}});
    return segments;
}

OrderedJson buriedGold(std::vector<Line> unused) {
    std::erase_if(unused, [](Line line) { return characterCount(line->text) < leastGoldLetters; });
    std::stable_sort(unused.begin(), unused.end(),
                     [](Line a, Line b) { return a->end - a->start > b->end - b->start; });
    OrderedJson gold = OrderedJson::array();
    for (const Line line : unused) {
        if (gold.size() == mostFindings)
            break;
        const double weight = std::clamp((line->end - line->start) / secondsPerWeight, 1.0, heaviestWeight);
        gold.push_back({{"startTime", line->start},
                        {"endTime", line->end},
                        {"text", line->text},
                        {"reason", "One of the longest lines that the cut leaves out."},
                        {"emotionalWeight", std::llround(weight)}});
    }
    return gold;
}

OrderedJson redundancies(const std::vector<Line>& used) {
    OrderedJson found = OrderedJson::array();
    for (std::size_t first = 0; first < used.size(); ++first) {
        for (std::size_t second = first + 1; second < used.size() && found.size() < mostFindings; ++second) {
            const auto common = commonWords(*used[first], *used[second]);
            if (common.size() >= sharedWords)
                found.push_back({{"firstStart", used[first]->start},
                                 {"firstEnd", used[first]->end},
                                 {"secondStart", used[second]->start},
                                 {"secondEnd", used[second]->end},
                                 {"topic", join(common, ", ")}});
        }
    }
    return found;
}

OrderedJson alternates(const std::vector<Line>& used, const std::vector<Line>& unused) {
    OrderedJson found = OrderedJson::array();
    for (const Line existing : used) {
        for (const Line other : unused) {
            const auto common = commonWords(*existing, *other);
            if (common.size() < sharedWords || found.size() == mostFindings)
                continue;
            found.push_back({{"existingStart", existing->start},
                             {"existingEnd", existing->end},
                             {"alternateStart", other->start},
                             {"alternateEnd", other->end},
                             {"alternateText", other->text},
                             {"reason", "It speaks of the same: " + join(common, ", ") + "."}});
        }
    }
    return found;
}

OrderedJson themeGaps(const std::vector<Line>& used, const std::vector<Line>& unused) {
    std::string usedText;
    std::string unusedText;
    for (const Line line : used)
        usedText += line->text + " ";
    for (const Line line : unused)
        unusedText += line->text + " ";
    const auto known = tellingWords(usedText);
    std::vector<std::pair<std::string, int>> gaps;
    for (const auto& [word, count] : countWords(unusedText))
        if (characterCount(word) >= tellingLetters && !known.contains(word))
            gaps.emplace_back(word, count);
    std::stable_sort(gaps.begin(), gaps.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    gaps.resize(std::min(gaps.size(), mostFindings));
    OrderedJson names = OrderedJson::array();
    for (const auto& [word, count] : gaps)
        names.push_back(word);
    return names;
}

} // namespace

std::optional<AuditRequest> readAuditPrompt(std::string_view prompt) {
    const auto coverage = readCoverage(prompt);
    if (!coverage)
        return std::nullopt;
    AuditRequest request{*coverage, {}};
    for (const std::string_view text : split(prompt, '\n'))
        if (auto line = readLine(text))
            request.lines.push_back(std::move(*line));
    return request.lines.empty() ? std::nullopt : std::optional(request);
}

OrderedJson judgeCut(const AuditRequest& request) {
    const auto used = linesThatAre(true, request);
    const auto unused = linesThatAre(false, request);
    constexpr double percent = 100.0;
    OrderedJson report;
    report["coveragePercent"] = request.coveragePercent;
    report["usedSegments"] = usedSegments(used);
    report["buriedGold"] = buriedGold(unused);
    report["redundancies"] = redundancies(used);
    report["alternates"] = alternates(used, unused);
    report["themeGaps"] = themeGaps(used, unused);
    report["confidenceScore"] = percent * static_cast<double>(used.size()) / static_cast<double>(request.lines.size());
    report["summary"] = "The cut uses " + std::to_string(used.size()) + " of " + std::to_string(request.lines.size()) +
                        " lines of the transcript.";
    return report;
}

} // namespace zuvo::standin
