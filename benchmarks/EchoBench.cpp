// What one keystroke in the search over a long transcript costs, against one plain pass over the same lines that
// ignores case. A frame has 16.7 ms.

#include "RatioReporter.h"

#include "ui/EchoLines.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <string>
#include <vector>

namespace zuvo {
namespace {

constexpr std::size_t lineCount = 50000;

const std::vector<std::string>& texts() {
    static const std::vector<std::string> made = [] {
        const std::vector<std::string> kinds = {
            "Desde niño supe que la mar no es de nadie.",
            "La mar te enseña a esperar, y también te enseña que esperar no siempre sirve.",
            "Subí los ciento doce escalones a oscuras. Los conté como si rezara.",
            "And that was the winter in which we lost the boat.",
            "Sí.",
        };
        std::vector<std::string> lines;
        for (std::size_t i = 0; i < lineCount; ++i)
            lines.push_back(kinds[i % kinds.size()] + " " + std::to_string(i));
        return lines;
    }();
    return made;
}

std::vector<TranscriptSegment> transcript() {
    std::vector<TranscriptSegment> lines;
    for (const auto& text : texts()) {
        const auto start = 4.5 * static_cast<double>(lines.size());
        lines.push_back({start, start + 4.2, text, "es"});
    }
    return lines;
}

/// From what stands in the field to what stands there after the key.
struct Keystroke {
    const char* before;
    const char* after;
};

constexpr Keystroke keystrokes[] = {{"", "m"}, {"ma", "mar"}, {"mar", "ma"}, {"zzz", "zzzz"}, {"m", ""}};

void keystrokeOurs(benchmark::State& state) {
    const auto& keystroke = keystrokes[state.range(0)];
    EchoLines echo;
    echo.setTranscript(transcript());
    while (!echo.isReady())
        QCoreApplication::processEvents();
    for (auto _ : state) {
        state.PauseTiming();
        echo.setSearch(QString::fromUtf8(keystroke.before));
        state.ResumeTiming();
        echo.setSearch(QString::fromUtf8(keystroke.after));
    }
    state.SetLabel(std::string("\"") + keystroke.before + "\" to \"" + keystroke.after + "\"");
}
BENCHMARK(keystrokeOurs)->Name("echo_keystroke/ours")->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

/// Before the lines have been made ready in idle time: all of it falls on the one key.
void earlyKeystrokeOurs(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        EchoLines echo;
        echo.setTranscript(transcript());
        state.ResumeTiming();
        echo.setSearch(QStringLiteral("m"));
    }
}
BENCHMARK(earlyKeystrokeOurs)->Name("echo_early_keystroke/ours")->Unit(benchmark::kMillisecond);

void plainPass(benchmark::State& state) {
    QStringList lines;
    for (const auto& text : texts())
        lines.append(QString::fromStdString(text));
    const auto wanted = QStringLiteral("mar");
    for (auto _ : state) {
        std::size_t found = 0;
        for (const auto& line : lines)
            found += line.contains(wanted, Qt::CaseInsensitive) ? 1U : 0U;
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(plainPass)->Name("echo_keystroke/baseline")->DenseRange(0, 4)->Unit(benchmark::kMillisecond);
BENCHMARK(plainPass)->Name("echo_early_keystroke/baseline")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zuvo

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return zuvo::runBenchmarks(argc, argv);
}
