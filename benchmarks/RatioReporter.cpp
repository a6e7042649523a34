#include "RatioReporter.h"

#include <cmath>
#include <cstdlib>
#include <fmt/format.h>

namespace zuvo {

namespace {

/// A benchmark's name in its parts: "X/ours/SIZE", "X/baseline/SIZE", the size being left out where there is one alone.
struct Name {
    explicit Name(const std::string& text) {
        const auto kindAt = text.find('/');
        const auto sizeAt = text.find('/', kindAt + 1);
        what = text.substr(0, kindAt);
        isOurs = text.compare(kindAt + 1, sizeAt - kindAt - 1, "ours") == 0;
        if (sizeAt != std::string::npos)
            size = std::atoll(text.c_str() + sizeAt + 1);
    }

    std::string what;
    bool isOurs = false;
    long long size = 0;
};

std::string milliseconds(double seconds) {
    constexpr double perSecond = 1000.0;
    return fmt::format("{:.3g} ms", seconds * perSecond);
}

} // namespace

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const auto& run : runs) {
        if (run.iterations <= 0)
            continue;
        const Name name(run.benchmark_name());
        auto& times = m_figures[name.what][name.size];
        (name.isOurs ? times.ours : times.baseline) = run.cpu_accumulated_time / static_cast<double>(run.iterations);
    }
    ConsoleReporter::ReportRuns(runs);
}

void RatioReporter::Finalize() {
    fmt::print("\n");
    for (const auto& [what, sizes] : m_figures) {
        for (const auto& [size, times] : sizes) {
            if (times.baseline > 0.0)
                fmt::print("{}{}: {} against {}, ratio {:.2f}\n", what, size > 0 ? fmt::format(", {}", size) : "",
                           milliseconds(times.ours), milliseconds(times.baseline), times.ours / times.baseline);
        }
        const auto& [smallest, first] = *sizes.begin();
        const auto& [largest, last] = *sizes.rbegin();
        if (smallest > 0 && largest > smallest && first.ours > 0.0)
            fmt::print("{}, growth: {} to {}, exponent {:.2f}\n", what, smallest, largest,
                       std::log(last.ours / first.ours) /
                           std::log(static_cast<double>(largest) / static_cast<double>(smallest)));
    }
    ConsoleReporter::Finalize();
}

int runBenchmarks(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

} // namespace zuvo
