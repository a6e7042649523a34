// What an export costs, against one formatted line a segment: the least that any list of the story would take.

#include "RatioReporter.h"

#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/PremiereXMLExporter.h"

#include <fmt/format.h>
#include <iterator>

namespace zuvo {
namespace {

constexpr std::size_t fileCount = 200;
constexpr double fileSeconds = 600.0;

/// Half of the files have video.
std::vector<MediaFileInfo> files() {
    std::vector<MediaFileInfo> list;
    for (std::size_t i = 0; i < fileCount; ++i) {
        MediaFileInfo file;
        file.filename = fmt::format("A{:03d}_interview.{}", i, i % 2 == 0 ? "mov" : "wav");
        file.path = "/Volumes/Footage/Day 1/" + file.filename;
        file.duration = fileSeconds;
        file.startTimecode = fmt::format("{:02d}:{:02d}:00:00", i / 6, i % 6 * 10);
        file.hasVideo = i % 2 == 0;
        list.push_back(std::move(file));
    }
    return list;
}

/// Moments of five seconds and a bit, all over the files.
std::vector<StorySegment> story(std::size_t count) {
    const auto sources = files();
    std::vector<StorySegment> segments;
    for (std::size_t i = 0; i < count; ++i) {
        const auto source = i * 37 % fileCount;
        const double start = static_cast<double>(source) * fileSeconds + static_cast<double>(i % 590) + 0.28;
        segments.push_back({static_cast<std::int64_t>(i), start, start + 5.44, sources[source].filename,
                            "And that was the winter in which we lost the boat.", "", "The Winter"});
    }
    return segments;
}

using Export = std::string (*)(const std::vector<StorySegment>&, const std::vector<MediaFileInfo>&);

std::string edl(const std::vector<StorySegment>& segments, const std::vector<MediaFileInfo>& mediaFiles) {
    return EDLExporter::exportText("Story", segments, mediaFiles);
}

std::string fcpxml(const std::vector<StorySegment>& segments, const std::vector<MediaFileInfo>& mediaFiles) {
    return FCPXMLExporter::exportText("Story", segments, mediaFiles, std::nullopt);
}

std::string xmeml(const std::vector<StorySegment>& segments, const std::vector<MediaFileInfo>& mediaFiles) {
    return PremiereXMLExporter::exportText("Story", segments, mediaFiles);
}

/// The same facts about each segment, in one line.
std::string oneLineEach(const std::vector<StorySegment>& segments, const std::vector<MediaFileInfo>& /*mediaFiles*/) {
    std::string text;
    for (const auto& segment : segments)
        fmt::format_to(std::back_inserter(text), "{:03d} {:.3f} {:.3f} {} {} {}\n", segment.index, segment.startTime,
                       segment.endTime, segment.sourceClip, segment.transcript, segment.chapter.value_or(""));
    return text;
}

void run(benchmark::State& state, Export make) {
    const auto segments = story(static_cast<std::size_t>(state.range(0)));
    const auto mediaFiles = files();
    std::size_t bytes = 0;
    for (auto _ : state) {
        const auto text = make(segments, mediaFiles);
        bytes = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["bytes/segment"] = static_cast<double>(bytes) / static_cast<double>(state.range(0));
}

void atEverySize(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(run, edl, edl)->Name("EDL of so many moments/ours")->Apply(atEverySize);
BENCHMARK_CAPTURE(run, edlBaseline, oneLineEach)->Name("EDL of so many moments/baseline")->Apply(atEverySize);
BENCHMARK_CAPTURE(run, fcpxml, fcpxml)->Name("FCPXML of so many moments/ours")->Apply(atEverySize);
BENCHMARK_CAPTURE(run, fcpxmlBaseline, oneLineEach)->Name("FCPXML of so many moments/baseline")->Apply(atEverySize);
BENCHMARK_CAPTURE(run, xmeml, xmeml)->Name("Premiere XML of so many moments/ours")->Apply(atEverySize);
BENCHMARK_CAPTURE(run, xmemlBaseline, oneLineEach)
    ->Name("Premiere XML of so many moments/baseline")
    ->Apply(atEverySize);

} // namespace
} // namespace zuvo

int main(int argc, char** argv) {
    return zuvo::runBenchmarks(argc, argv);
}
