#pragma once

#include <benchmark/benchmark.h>
#include <map>
#include <string>

namespace zuvo {

/// Prints what the console reporter prints, and at the end, for every "X/ours/..." with an "X/baseline/..." of the same
/// run, how many times the baseline's time ours took. Times alone say little on another machine; ratios do.
class RatioReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    std::map<std::string, double> m_seconds; ///< processor time of one iteration by name
};

/// Runs every registered benchmark under the reporter; gives the program's exit status.
int runBenchmarks(int argc, char** argv);

} // namespace zuvo
