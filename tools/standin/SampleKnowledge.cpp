#include "standin/SampleKnowledge.h"

#include "base/Json.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>

namespace zuvo::standin {
namespace {

constexpr double leastCorrelation = 0.88;   // less alike is another recording
constexpr double largestResidualDb = 7.0;   // what may remain (RMS) once the difference in loudness is taken out
constexpr double leastDeviationDb = 3.0;    // flatter passages (room tone) say nothing about where they come from
constexpr double leastOverlapSeconds = 2.0; // a shorter common stretch at an edge would often match by chance
constexpr double leastRangeSeconds = 1.0;   // shorter remains are not looked at
constexpr double shavedSeconds = 0.06;      // a cut at times rounded to 0.1 s may shave so much off a word

std::optional<HeardLine> readLine(const Json& object) {
    const auto start = readNumber(object, "start");
    const auto end = readNumber(object, "end");
    const auto text = readText(object, "text");
    const auto words = readObjects(object, "words");
    if (!start || !end || !text || !words)
        return std::nullopt;
    HeardLine line{*start, *end, *text, {}};
    for (const Json* entry : *words) {
        const auto word = readText(*entry, "word");
        const auto wordStart = readNumber(*entry, "start");
        const auto wordEnd = readNumber(*entry, "end");
        if (!word || !wordStart || !wordEnd)
            return std::nullopt;
        line.words.push_back({*word, *wordStart, *wordEnd});
    }
    return line;
}

std::optional<SampleFile> readFile(const Json& object) {
    const auto name = readText(object, "name");
    const auto duration = readNumber(object, "duration");
    const auto lines = readObjects(object, "lines");
    const auto levels = object.find("envelope");
    if (!name || !duration || !lines || levels == object.end() || !levels->is_array())
        return std::nullopt;
    SampleFile file{*name, *duration, {}, {}};
    for (const Json* entry : *lines) {
        const auto line = readLine(*entry);
        if (!line)
            return std::nullopt;
        file.lines.push_back(*line);
    }
    for (const Json& level : *levels) {
        if (!level.is_number())
            return std::nullopt;
        file.levels.push_back(level.get<double>());
    }
    return file;
}

/// Sums up to each index, so that mean and deviation of any stretch cost nothing.
class Sums {
public:
    explicit Sums(const std::vector<double>& values) : m_sum(values.size() + 1), m_squares(values.size() + 1) {
        for (std::size_t at = 0; at < values.size(); ++at) {
            m_sum[at + 1] = m_sum[at] + values[at];
            m_squares[at + 1] = m_squares[at] + values[at] * values[at];
        }
    }
    [[nodiscard]] double mean(std::size_t first, std::size_t count) const {
        return (m_sum[first + count] - m_sum[first]) / static_cast<double>(count);
    }
    [[nodiscard]] double variance(std::size_t first, std::size_t count) const {
        const double average = mean(first, count);
        return (m_squares[first + count] - m_squares[first]) / static_cast<double>(count) - average * average;
    }

private:
    std::vector<double> m_sum;
    std::vector<double> m_squares;
};

struct Match {
    Placement placement;
    double score = 0.0;
};

/// Compares one file at one shift with the audio's steps [first, last).
class FileMatcher {
public:
    FileMatcher(const std::vector<double>& audio, const Sums& audioSums, const std::vector<double>& file)
        : m_audio(audio), m_audioSums(audioSums), m_file(file), m_fileSums(file) {}

    /// The longest good match. Correlation is weighed with length: a long passage is surer than a short one.
    [[nodiscard]] std::optional<Match> best(std::size_t first, std::size_t last, std::size_t leastOverlap) const {
        std::optional<Match> found;
        const auto begin = static_cast<std::ptrdiff_t>(first) - static_cast<std::ptrdiff_t>(m_file.size());
        for (std::ptrdiff_t shift = begin; shift < static_cast<std::ptrdiff_t>(last); ++shift) {
            const auto match = at(shift, first, last, leastOverlap);
            if (match && (!found || match->score > found->score))
                found = match;
        }
        return found;
    }

private:
    [[nodiscard]] std::optional<Match> at(std::ptrdiff_t shift, std::size_t first, std::size_t last,
                                          std::size_t leastOverlap) const {
        const std::ptrdiff_t fileEnd = shift + static_cast<std::ptrdiff_t>(m_file.size());
        const std::size_t begin = std::max(first, static_cast<std::size_t>(std::max<std::ptrdiff_t>(shift, 0)));
        const std::size_t end = std::min(last, static_cast<std::size_t>(std::max<std::ptrdiff_t>(fileEnd, 0)));
        if (begin >= end || end - begin < leastOverlap)
            return std::nullopt;
        const std::size_t count = end - begin;
        const auto inFile = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(begin) - shift);
        const double audioVariance = m_audioSums.variance(begin, count);
        const double fileVariance = m_fileSums.variance(inFile, count);
        if (std::min(audioVariance, fileVariance) < leastDeviationDb * leastDeviationDb)
            return std::nullopt;
        double products = 0.0;
        for (std::size_t step = 0; step < count; ++step)
            products += m_audio[begin + step] * m_file[inFile + step];
        const double covariance =
            products / static_cast<double>(count) - m_audioSums.mean(begin, count) * m_fileSums.mean(inFile, count);
        const double correlation = covariance / std::sqrt(audioVariance * fileVariance);
        const double residual = audioVariance + fileVariance - 2.0 * covariance;
        if (correlation < leastCorrelation || residual > largestResidualDb * largestResidualDb)
            return std::nullopt;
        return Match{{begin, end, shift, 0}, correlation * static_cast<double>(count)};
    }

    const std::vector<double>& m_audio;
    const Sums& m_audioSums;
    const std::vector<double>& m_file;
    Sums m_fileSums;
};

/// Places the best match in [first, last) and looks again at what is left on both sides of it.
void findIn(const std::vector<FileMatcher>& matchers, double stepSeconds, std::size_t first, std::size_t last,
            std::vector<Placement>& found) {
    const auto steps = [&](double seconds) { return static_cast<std::size_t>(std::llround(seconds / stepSeconds)); };
    if (last - first < steps(leastRangeSeconds))
        return;
    const std::size_t leastOverlap = std::min(steps(leastOverlapSeconds), last - first);
    std::optional<Match> best;
    for (std::size_t file = 0; file < matchers.size(); ++file) {
        auto match = matchers[file].best(first, last, leastOverlap);
        if (!match || (best && best->score >= match->score))
            continue;
        match->placement.file = file;
        best = match;
    }
    if (!best)
        return;
    findIn(matchers, stepSeconds, first, best->placement.first, found);
    found.push_back(best->placement);
    findIn(matchers, stepSeconds, best->placement.last, last, found);
}

} // namespace

std::optional<SampleKnowledge> loadSample(const std::filesystem::path& folder) {
    std::ifstream input(folder / "transcript.json", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
    const auto tree = parseForeignJson(text);
    if (!tree)
        return std::nullopt;
    const auto step = readNumber(*tree, "envelopeStepSeconds");
    const auto files = readObjects(*tree, "files");
    if (!step || *step <= 0.0 || !files)
        return std::nullopt;
    SampleKnowledge sample{*step, {}};
    for (const Json* entry : *files) {
        auto file = readFile(*entry);
        if (!file)
            return std::nullopt;
        sample.files.push_back(std::move(*file));
    }
    return sample;
}

std::vector<Placement> findSample(const SampleKnowledge& sample, const std::vector<double>& levels) {
    const Sums sums(levels);
    std::vector<FileMatcher> matchers;
    matchers.reserve(sample.files.size());
    for (const SampleFile& file : sample.files)
        matchers.emplace_back(levels, sums, file.levels);
    std::vector<Placement> found;
    findIn(matchers, sample.stepSeconds, 0, levels.size(), found);
    return found;
}

std::vector<HeardLine> linesOf(const SampleKnowledge& sample, const Placement& placement) {
    const double shift = static_cast<double>(placement.shift) * sample.stepSeconds;
    const double begin = static_cast<double>(placement.first) * sample.stepSeconds;
    const double end = static_cast<double>(placement.last) * sample.stepSeconds;
    std::vector<HeardLine> lines;
    for (const HeardLine& known : sample.files[placement.file].lines) {
        HeardLine line;
        for (const HeardWord& word : known.words) {
            const HeardWord moved{word.word, std::max(word.start + shift, begin), std::min(word.end + shift, end)};
            if (word.start + shift < begin - shavedSeconds || word.end + shift > end + shavedSeconds ||
                moved.start >= moved.end)
                continue;
            line.text += (line.text.empty() ? "" : " ") + moved.word;
            line.words.push_back(moved);
        }
        if (line.words.empty())
            continue;
        line.start = line.words.front().start;
        line.end = line.words.back().end;
        lines.push_back(std::move(line));
    }
    return lines;
}

} // namespace zuvo::standin
