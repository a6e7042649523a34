#pragma once

#include <benchmark/benchmark.h>
#include <map>
#include <string>

namespace zuvo {

/// Prints what the console reporter prints, and at the end a line for ./bench for every "X/ours/SIZE" with an
/// "X/baseline/SIZE" of the same run: how many times the baseline's time ours took. Times alone say little on another
/// machine; ratios do. Sizes are whole numbers or absent; with two or more of them a further line tells by which power
/// of the size our time grows from the smallest to the largest.
class RatioReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Times {
        double ours = 0.0;     ///< seconds of processor time of one iteration, as is the next
        double baseline = 0.0; ///< 0 until it has run
    };

    std::map<std::string, std::map<long long, Times>> m_figures; ///< by what is measured, and size (0 for none)
};

/// Runs every registered benchmark under the reporter; gives the program's exit status.
int runBenchmarks(int argc, char** argv);

} // namespace zuvo
