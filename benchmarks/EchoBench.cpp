// What one keystroke in the search over a long transcript costs, against one plain pass over the same lines that
// ignores case. A frame has 16.7 ms.

#include "RatioReporter.h"

#include "ui/EchoLines.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <fmt/format.h>
#include <string>
#include <vector>

namespace zuvo {
namespace {

/// So many lines of an interview.
std::vector<std::string> texts(benchmark::State& state) {
    static const std::vector<std::string> kinds = {
        "Desde niño supe que la mar no es de nadie.",
        "La mar te enseña a esperar, y también te enseña que esperar no siempre sirve.",
        "Subí los ciento doce escalones a oscuras. Los conté como si rezara.",
        "And that was the winter in which we lost the boat.",
        "Sí.",
    };
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < count; ++i)
        lines.push_back(kinds[i % kinds.size()] + " " + std::to_string(i));
    return lines;
}

std::vector<TranscriptSegment> transcript(benchmark::State& state) {
    std::vector<TranscriptSegment> lines;
    for (const auto& text : texts(state)) {
        const auto start = 4.5 * static_cast<double>(lines.size());
        lines.push_back({start, start + 4.2, text, "es"});
    }
    return lines;
}

/// One key, from what stands in the field to what stands there after it, once the lines have been made ready.
void keystrokeOurs(benchmark::State& state, const char* before, const char* after) {
    EchoLines echo;
    echo.setTranscript(transcript(state));
    while (!echo.isReady())
        QCoreApplication::processEvents();
    for (auto _ : state) {
        state.PauseTiming();
        echo.setSearch(QString::fromUtf8(before));
        state.ResumeTiming();
        echo.setSearch(QString::fromUtf8(after));
    }
}

/// Before the lines have been made ready in idle time: all of it falls on the one key.
void earlyKeystrokeOurs(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        EchoLines echo;
        echo.setTranscript(transcript(state));
        state.ResumeTiming();
        echo.setSearch(QStringLiteral("m"));
    }
}

void plainPass(benchmark::State& state) {
    QStringList lines;
    for (const auto& text : texts(state))
        lines.append(QString::fromStdString(text));
    const auto wanted = QStringLiteral("mar");
    for (auto _ : state) {
        std::size_t found = 0;
        for (const auto& line : lines)
            found += line.contains(wanted, Qt::CaseInsensitive) ? 1U : 0U;
        benchmark::DoNotOptimize(found);
    }
}

void registerAll() {
    const auto against = [](const std::string& name, auto ours) {
        // As often as the lines allow: what the field holds before a key is set in each turn too, out of the measured
        // time.
        constexpr int linesInAll = 1'500'000;
        for (const int lines : {5000, 50000, 500000}) {
            for (auto* made : {benchmark::RegisterBenchmark((name + "/ours").c_str(), ours),
                               benchmark::RegisterBenchmark((name + "/baseline").c_str(), plainPass)})
                made->Arg(lines)->Iterations(linesInAll / lines)->Unit(benchmark::kMillisecond);
        }
    };
    const auto key = [&against](const char* before, const char* after) {
        against(fmt::format("a key in the Echo, \"{}\" to \"{}\", so many lines", before, after),
                [before, after](benchmark::State& state) { keystrokeOurs(state, before, after); });
    };
    key("", "m");
    key("ma", "mar");
    key("mar", "ma");
    against("the first key in the Echo before its lines are ready, so many lines", earlyKeystrokeOurs);
}

} // namespace
} // namespace zuvo

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    zuvo::registerAll();
    return zuvo::runBenchmarks(argc, argv);
}
