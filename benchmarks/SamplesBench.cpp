// Reading the samples of a source: against a plain read of the same bytes into a buffer that is there already, and in
// memory against the bytes of the file.

#include "RatioReporter.h"

#include "platform/FileSystem.h"

#include <cstdio>
#include <fmt/format.h>
#include <fstream>
#include <sys/resource.h>

namespace zuvo {
namespace {

/// Two hours at 1000 samples per second.
constexpr std::size_t sampleCount = std::size_t{2} * 3600 * 1000;
constexpr std::size_t fileBytes = sampleCount * sizeof(std::int16_t);
constexpr const char* fileName = "zuvo_samples_bench.raw";

void makeFile() {
    std::ofstream file(fileName, std::ios::binary);
    // Piece by piece, so that making the file leaves no mark on the peak of memory.
    const std::vector<char> second(1000 * sizeof(std::int16_t), 7);
    for (std::size_t written = 0; written < fileBytes; written += second.size())
        file.write(second.data(), static_cast<std::streamsize>(second.size()));
}

/// Most memory that the program has held so far, in bytes.
double peakBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    constexpr double kilobyte = 1024.0;
    return static_cast<double>(usage.ru_maxrss) * kilobyte;
}

void readOurs(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(readSamples(fileName));
}
BENCHMARK(readOurs)->Name("reading samples of two hours/ours")->Unit(benchmark::kMillisecond);

void readBaseline(benchmark::State& state) {
    std::vector<char> buffer(fileBytes);
    for (auto _ : state) {
        std::ifstream file(fileName, std::ios::binary);
        file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        benchmark::DoNotOptimize(buffer.data());
    }
}
BENCHMARK(readBaseline)->Name("reading samples of two hours/baseline")->Unit(benchmark::kMillisecond);

void reportPeak() {
    const auto before = peakBytes();
    const auto samples = readSamples(fileName);
    const auto grown = peakBytes() - before;
    fmt::print("memory that reading samples takes: {} bytes against {} of the file, ratio {:.2f}\n", grown, fileBytes,
               grown / static_cast<double>(fileBytes));
    benchmark::DoNotOptimize(samples);
}

} // namespace
} // namespace zuvo

int main(int argc, char** argv) {
    zuvo::makeFile();
    zuvo::reportPeak();
    const int status = zuvo::runBenchmarks(argc, argv);
    std::remove(zuvo::fileName);
    return status;
}
