// Reading the samples of a source: against a plain read of the same bytes into a buffer that is there already, and in
// memory against the bytes of the file.

#include "RatioReporter.h"

#include "platform/FileSystem.h"

#include <cstdio>
#include <fmt/format.h>
#include <fstream>
#include <malloc.h>
#include <sstream>
#include <stdexcept>
#include <string>

namespace zuvo {
namespace {

constexpr std::size_t secondsPerHour = 3600;
constexpr std::size_t bytesPerSecond = 1000 * sizeof(std::int16_t);

/// A file of so many hours of samples, for as long as this lives.
class SampleFile {
public:
    explicit SampleFile(std::size_t hours) : m_bytes(hours * secondsPerHour * bytesPerSecond) {
        std::ofstream file(path, std::ios::binary);
        // Piece by piece, so that making the file leaves no mark on the peak of memory.
        const std::vector<char> second(bytesPerSecond, 7);
        for (std::size_t written = 0; written < m_bytes; written += second.size())
            file.write(second.data(), static_cast<std::streamsize>(second.size()));
    }
    ~SampleFile() { std::remove(path); }

    SampleFile(const SampleFile&) = delete;
    SampleFile& operator=(const SampleFile&) = delete;

    [[nodiscard]] std::size_t bytes() const { return m_bytes; }

    static constexpr const char* path = "zuvo_samples_bench.raw";

private:
    std::size_t m_bytes;
};

/// Most memory that the program has held so far, in bytes. The usage that getrusage() tells begins with that of the
/// program which started this one.
double peakBytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        std::istringstream words(line);
        std::string key;
        double kilobytes = 0.0;
        if (words >> key >> kilobytes && key == "VmHWM:") {
            constexpr double kilobyte = 1024.0;
            return kilobytes * kilobyte;
        }
    }
    throw std::runtime_error("The system does not tell the peak of memory.");
}

void hours(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(2)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond);
}

void readOurs(benchmark::State& state) {
    const SampleFile file(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(readSamples(SampleFile::path));
}
BENCHMARK(readOurs)->Name("reading samples of so many hours/ours")->Apply(hours);

void readBaseline(benchmark::State& state) {
    const SampleFile file(static_cast<std::size_t>(state.range(0)));
    std::vector<char> buffer(file.bytes());
    for (auto _ : state) {
        std::ifstream stream(SampleFile::path, std::ios::binary);
        stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        benchmark::DoNotOptimize(buffer.data());
    }
}
BENCHMARK(readBaseline)->Name("reading samples of so many hours/baseline")->Apply(hours);

void reportPeak() {
    const SampleFile file(2);
    const auto before = peakBytes();
    const auto samples = readSamples(SampleFile::path);
    const auto grown = peakBytes() - before;
    fmt::print("memory that reading samples takes: {} bytes against {} of the file, ratio {:.2f}\n", grown,
               file.bytes(), grown / static_cast<double>(file.bytes()));
    benchmark::DoNotOptimize(samples);
}

} // namespace
} // namespace zuvo

int main(int argc, char** argv) {
    // A mine reads its samples once, into memory that is new to it. Without this the allocator would hand the same
    // memory out again for some of the sizes.
    constexpr int newMemoryFrom = 1 << 20;
    mallopt(M_MMAP_THRESHOLD, newMemoryFrom);
    zuvo::reportPeak();
    return zuvo::runBenchmarks(argc, argv);
}
