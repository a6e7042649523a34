#include "RatioReporter.h"

#include <fmt/format.h>

namespace zuvo {

namespace {

constexpr const char* ours = "/ours";
constexpr const char* baseline = "/baseline";

} // namespace

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const auto& run : runs) {
        if (run.iterations > 0)
            m_seconds[run.benchmark_name()] = run.cpu_accumulated_time / static_cast<double>(run.iterations);
    }
    ConsoleReporter::ReportRuns(runs);
}

void RatioReporter::Finalize() {
    fmt::print("\n{:<60} {:>10}\n", "ours against its baseline", "ratio");
    for (const auto& [name, seconds] : m_seconds) {
        const auto place = name.find(ours);
        if (place == std::string::npos)
            continue;
        auto counterpart = name;
        counterpart.replace(place, std::string(ours).size(), baseline);
        const auto found = m_seconds.find(counterpart);
        if (found != m_seconds.end() && found->second > 0.0)
            fmt::print("{:<60} {:>10.2f}\n", name, seconds / found->second);
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
