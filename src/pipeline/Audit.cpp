// The audit of a cut that an editor has made: what was left on the floor.

#include "base/Numbers.h"
#include "base/Text.h"
#include "pipeline/LocalPipeline.h"
#include "resolve/Scripts.h"
#include "steps/ScriptLines.h"

#include <set>

namespace zuvo {

namespace {

// The fixed points of `progress`.
constexpr double auditProgressConnecting = 0.05;
constexpr double progressClipsRead = 0.15;
constexpr double auditProgressMediaKnown = 0.25;
constexpr double auditProgressTranscriptKnown = 0.4;
constexpr double progressMapped = 0.5;
constexpr double progressAsking = 0.6;
constexpr double auditProgressComplete = 1.0;

std::size_t sourceCount(const std::vector<TimelineClip>& clips) {
    std::set<std::string> sources;
    for (const auto& clip : clips)
        sources.insert(clip.sourceFile);
    return sources.size();
}

std::string coverageLine(const Coverage& coverage) {
    return "  Used: " + fixedText(coverage.usedSeconds, 1) + "s / " + fixedText(coverage.totalSeconds, 0) + "s (" +
           fixedText(coverage.percent, 0) + "%)";
}

} // namespace

QCoro::Task<> LocalPipeline::auditTimeline(std::string timeline) {
    const auto self = shared_from_this();
    reset();
    m_startTime = m_platform.clock();
    setAuditReport(std::nullopt);
    log("$ zuvo audit --timeline " + timeline, LogColor::dim);
    setStep(PipelineStep::connecting);
    setProgress(auditProgressConnecting);
    log("Reading existing timeline from Resolve...");
    const auto clips = co_await readTimelineClips(timeline);
    if (!clips) {
        fail("Could not read timeline clips from Resolve");
        co_return;
    }
    if (m_cancelled)
        co_return;
    log("✓ Found " + std::to_string(clips->size()) + " clips using " + std::to_string(sourceCount(*clips)) +
            " source files",
        LogColor::green);
    setProgress(progressClipsRead);

    const auto media = co_await getMediaPaths(timeline);
    if (!media) {
        fail("Could not access source media");
        co_return;
    }
    log("✓ Found " + std::to_string(media->size()) + " total source files in media pool", LogColor::green);
    if (m_cancelled)
        co_return;
    const auto transcript = transcriptForAudit(*media);
    if (transcript)
        co_await auditCut(*clips, *media, *transcript);
}

std::optional<TranscriptResult> LocalPipeline::transcriptForAudit(const std::vector<std::string>& mediaPaths) {
    setProgress(auditProgressMediaKnown);
    setStep(PipelineStep::analyzing);
    log("⛏ Loading cached transcripts...", LogColor::accent);
    auto transcript = loadCachedTranscript(mediaPaths);
    if (!transcript || transcript->segments.empty()) {
        fail("No cached transcripts found. Run Full Mine or Story Mine first to generate transcripts.");
        return std::nullopt;
    }
    log("✓ Loaded transcript — " + std::to_string(transcript->segments.size()) + " segments · " +
            std::to_string(wordCount(transcript->segments)) + " words",
        LogColor::green);
    setProgress(auditProgressTranscriptKnown);
    return transcript;
}

QCoro::Task<> LocalPipeline::auditCut(std::vector<TimelineClip> clips, std::vector<std::string> mediaPaths,
                                      TranscriptResult transcript) {
    log("Mapping used clips to transcript...");
    auto used = mapTimelineClipsToTranscript(clips, std::move(mediaPaths));
    const auto coverage = coverageOf(used, transcript.segments);
    log(coverageLine(coverage), LogColor::dim);
    setProgress(progressMapped);
    auto prompt = auditPrompt(clips.size(), coverage, markedTranscript(transcript.segments, used));
    log("⛏ Claude analyzing for buried gold...", LogColor::accent);
    setProgress(progressAsking);
    auto report = co_await analyzeAudit(std::move(prompt), std::move(used));
    if (m_cancelled)
        co_return;
    if (!report) {
        fail("Claude analysis failed");
        co_return;
    }
    setAuditReport(std::move(report));
    log("💎 Found " + std::to_string(m_auditReport->buriedGold.size()) + " gold moments · " +
            std::to_string(m_auditReport->redundancies.size()) + " redundancies",
        LogColor::accent);
    log("  Confidence score: " + std::to_string(truncated(m_auditReport->confidenceScore)) + "/100", LogColor::green);
    setProgress(auditProgressComplete);
    setStep(PipelineStep::complete);
    log("✓ Audit complete!", LogColor::green);
}

QCoro::Task<std::optional<std::vector<TimelineClip>>> LocalPipeline::readTimelineClips(std::string timeline) {
    const auto self = shared_from_this();
    const auto output = co_await runScript(timelineClipsScript(m_platform.environment.resolveScriptLib, timeline));
    if (!output) {
        log("  Python script failed", LogColor::accent);
        co_return std::nullopt;
    }
    for (const auto& line : readScriptLines(*output)) {
        if (line.kind == ScriptLineKind::error)
            log("  ✗ " + line.text, LogColor::accent);
        if (line.kind != ScriptLineKind::success)
            continue;
        auto clips = timelineClipsOf(line.text);
        if (!clips)
            log("  Failed to parse clip JSON", LogColor::accent);
        co_return clips;
    }
    co_return std::nullopt;
}

QCoro::Task<std::optional<AuditReport>> LocalPipeline::analyzeAudit(std::string prompt,
                                                                    std::vector<UsedSegment> /*usedRanges*/) {
    const auto self = shared_from_this();
    const auto reply = co_await askModel(std::move(prompt), KeyState::notLogged);
    const auto cleaned = reply ? cleanedReply(*reply) : std::nullopt;
    if (!cleaned)
        co_return std::nullopt;
    auto decoded = decodeRecordText<AuditReport>(*cleaned);
    if (!decoded.value)
        logDecodeFailure(decoded.failure, *cleaned);
    co_return std::move(decoded.value);
}

} // namespace zuvo
