#include "steps/EnergyAudit.h"

#include "base/Numbers.h"
#include "model/PipelineLog.h"

#include <fmt/format.h>

namespace zuvo {

namespace {

/// A longer moment loses its tail. Seconds.
constexpr double maximumSegmentDuration = 30.0;

/// A shorter moment is dropped: nothing can be told in it. Seconds.
constexpr double minimumSegmentDuration = 5.0;

double durationOf(const StorySegment& segment) {
    return segment.endTime - segment.startTime;
}

void trimLongSegments(std::vector<StorySegment>& segments, std::vector<AuditLine>& lines) {
    for (auto& segment : segments) {
        const double duration = durationOf(segment);
        if (!(duration > maximumSegmentDuration))
            continue;
        lines.push_back({fmt::format("  ⚠ Trimming segment {} from {}s to {}s", segment.index, fixedText(duration, 1),
                                     fixedText(maximumSegmentDuration, 0)),
                         LogColor::accent});
        segment.endTime = segment.startTime + maximumSegmentDuration;
    }
}

} // namespace

AuditedStory auditEnergy(MiningResults reply, const std::vector<SourceFile>& sources, const SampleStore& samples,
                         double quietThreshold) {
    AuditedStory audited;
    trimLongSegments(reply.segments, audited.lines);
    std::vector<StorySegment> passed;
    std::size_t rejected = 0;
    for (auto& segment : reply.segments) {
        if (durationOf(segment) < minimumSegmentDuration) {
            ++rejected;
            continue;
        }
        const double rms = energyBetween(segment.startTime, segment.endTime, sources, samples);
        if (rms < quietThreshold) {
            ++rejected;
            audited.lines.push_back({fmt::format("  ✗ Reject seg {}: RMS {}dB < {}dB", segment.index, fixedText(rms, 1),
                                                 fixedText(quietThreshold, 1)),
                                     LogColor::accent});
            continue;
        }
        passed.push_back(std::move(segment));
    }
    if (rejected > 0)
        audited.lines.push_back(
            {fmt::format("  Energy audit: {} passed, {} rejected", passed.size(), rejected), LogColor::dim});
    for (std::size_t i = 0; i < passed.size(); ++i)
        passed[i].index = static_cast<std::int64_t>(i);
    reply.segments = std::move(passed);
    audited.results = std::move(reply);
    return audited;
}

} // namespace zuvo
