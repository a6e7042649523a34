// What the computing steps of a mine cost, each against the least work that could give its result.

#include "RatioReporter.h"

#include "base/Text.h"
#include "steps/Energy.h"
#include "steps/EnergyThresholds.h"
#include "steps/ExportTexts.h"
#include "steps/TranscriptionFormat.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace zuvo {
namespace {

constexpr unsigned seed = 20;

std::vector<double> levels(std::size_t count) {
    std::mt19937 random(seed);
    std::normal_distribution<double> quiet(-48.0, 4.0);
    std::normal_distribution<double> loud(-24.0, 3.0);
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = i % 3 == 0 ? quiet(random) : loud(random);
    return values;
}

Samples noise(std::size_t count) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> amplitude(-8000, 8000);
    Samples samples(count);
    std::generate(samples.begin(), samples.end(), [&] { return static_cast<std::int16_t>(amplitude(random)); });
    return samples;
}

std::vector<TranscriptSegment> lines(std::size_t count) {
    std::vector<TranscriptSegment> result;
    for (std::size_t i = 0; i < count; ++i) {
        const auto start = static_cast<double>(i) * 4.5;
        result.push_back({start, start + 4.2, "And that was the winter in which we lost the boat.", "en"});
    }
    return result;
}

// Thresholds. The baseline sorts the same levels, which any way to the candidates has to do.

void transcripts(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
}

void thresholdsOurs(benchmark::State& state) {
    const auto values = levels(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(energyThresholds(values));
}
BENCHMARK(thresholdsOurs)->Name("thresholds of so many lines/ours")->Apply(transcripts);

void thresholdsBaseline(benchmark::State& state) {
    const auto values = levels(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        auto sorted = values;
        std::sort(sorted.begin(), sorted.end());
        benchmark::DoNotOptimize(sorted.data());
    }
}
BENCHMARK(thresholdsBaseline)->Name("thresholds of so many lines/baseline")->Apply(transcripts);

// Levels of all lines of so many hours. The baseline is one sum of squares, in whole numbers, over the same samples.

void hours(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(2)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond);
}

constexpr std::size_t secondsPerHour = 3600;

void energiesOurs(benchmark::State& state) {
    const auto seconds = static_cast<std::size_t>(state.range(0)) * secondsPerHour;
    SampleStore store;
    store["a.wav"] = noise(seconds * levelSampleRate);
    const std::vector<SourceFile> sources = {{"a.wav", "/a.wav", 0.0, double(seconds), double(seconds)}};
    // Without a pause, so that every sample belongs to a line.
    auto transcript = lines(seconds * 2 / 9);
    for (auto& line : transcript)
        line.end = line.start + 4.5;
    for (auto _ : state)
        benchmark::DoNotOptimize(lineEnergies(transcript, sources, store));
}
BENCHMARK(energiesOurs)->Name("energies of so many hours/ours")->Apply(hours);

void energiesBaseline(benchmark::State& state) {
    const auto samples = noise(static_cast<std::size_t>(state.range(0)) * secondsPerHour * levelSampleRate);
    for (auto _ : state) {
        std::int64_t squares = 0;
        for (const std::int64_t sample : samples)
            squares += sample * sample;
        benchmark::DoNotOptimize(squares);
    }
}
BENCHMARK(energiesBaseline)->Name("energies of so many hours/baseline")->Apply(hours);

// Subtitle cards for a story of many moments. The baseline only joins the same words.

std::vector<StorySegment> story(std::size_t count) {
    std::vector<StorySegment> segments;
    for (std::size_t i = 0; i < count; ++i) {
        const auto start = static_cast<double>(i) * 30.0;
        std::string text;
        for (int word = 0; word < 40; ++word)
            text += "word ";
        segments.push_back({static_cast<std::int64_t>(i), start, start + 20.0, "a.wav", text, text, "Chapter"});
    }
    return segments;
}

std::vector<WordSegment> words(std::size_t count) {
    std::vector<WordSegment> segments;
    for (std::size_t i = 0; i < count; ++i) {
        WordSegment segment{static_cast<std::int64_t>(i), {}};
        for (int word = 0; word < 40; ++word)
            segment.words.push_back({"word", word * 0.5, word * 0.5 + 0.4});
        segments.push_back(std::move(segment));
    }
    return segments;
}

void subtitlesOurs(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const auto segments = story(count);
    const auto timing = words(count);
    for (auto _ : state)
        benchmark::DoNotOptimize(subtitlesText(segments, timing));
}
BENCHMARK(subtitlesOurs)
    ->Name("subtitles of so many moments/ours")
    ->Arg(20)
    ->Arg(200)
    ->Arg(2000)
    ->Unit(benchmark::kMicrosecond);

void subtitlesBaseline(benchmark::State& state) {
    const auto segments = story(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::string text;
        for (const auto& segment : segments) {
            for (const auto word : splitAtBlanks(segment.translation))
                text.append(word).append(" ");
        }
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(subtitlesBaseline)
    ->Name("subtitles of so many moments/baseline")
    ->Arg(20)
    ->Arg(200)
    ->Arg(2000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace zuvo

int main(int argc, char** argv) {
    return zuvo::runBenchmarks(argc, argv);
}
