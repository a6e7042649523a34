// The order of the stages, and what the user sees between them.

#include "base/Numbers.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"
#include "steps/StylePrompt.h"

namespace zuvo {

namespace {

// The fixed points of `progress`.
constexpr double progressConnecting = 0.02;
constexpr double progressMediaKnown = 0.05;
constexpr double progressChunking = 0.1;
constexpr double progressTranscribing = 0.15;
constexpr double progressTranscriptKnown = 0.45;
constexpr double progressProjectAnalysis = 0.5;
constexpr double progressWords = 0.7;
constexpr double progressExports = 0.85;
constexpr double progressComplete = 1.0;

constexpr double bytesPerMegabyte = 1'000'000.0;

constexpr const char* analysisLine = "⛏ Claude analyzing story structure...";

std::string transcriptSize(const TranscriptResult& transcript) {
    return std::to_string(transcript.segments.size()) + " segments · " +
           std::to_string(wordCount(transcript.segments)) + " words";
}

std::size_t totalWords(const std::vector<WordSegment>& segments) {
    std::size_t words = 0;
    for (const auto& segment : segments)
        words += segment.words.size();
    return words;
}

} // namespace

std::string displayName(const std::vector<std::string>& filePaths) {
    if (filePaths.size() != 1)
        return "Dropped Files (" + std::to_string(filePaths.size()) + ")";
    return replaceAll(lastPathComponent(filePaths[0]), "." + pathExtension(filePaths[0]), "");
}

QCoro::Task<> LocalPipeline::run(std::string timeline, MineChoices choices) {
    const auto self = shared_from_this();
    beginRun();
    log("$ zuvo mine --mode " + commandLineForm(choices.mode), LogColor::dim);
    setStep(PipelineStep::connecting);
    setProgress(progressConnecting);
    log("Connecting to DaVinci Resolve...");
    const auto media = co_await getTimelineMedia(timeline);
    if (!media) {
        fail("Could not find source media for timeline '" + timeline + "'");
        co_return;
    }
    if (m_cancelled)
        co_return;
    setLastMediaPaths(*media);
    log("✓ Connected — found " + std::to_string(media->size()) + " source clip" + std::string(pluralS(media->size())),
        LogColor::green);
    for (const auto& path : *media)
        log("  → " + lastPathComponent(path), LogColor::dim);

    Mine mine{timeline,
              *media,
              choices.language,
              choices.story,
              "Extracting audio from timeline...",
              " words transcribed across ",
              "✓ Complete — we found gems!",
              true};
    co_await mineFootage(std::move(mine));
}

QCoro::Task<> LocalPipeline::run(std::vector<std::string> filePaths, MineChoices choices) {
    const auto self = shared_from_this();
    beginRun();
    const auto count = filePaths.size();
    log("$ zuvo mine --files " + std::to_string(count) + " --mode " + commandLineForm(choices.mode), LogColor::dim);
    setStep(PipelineStep::connecting);
    setProgress(progressConnecting);
    log("Using " + std::to_string(count) + " dropped file" + std::string(pluralS(count)) + "...");
    setLastMediaPaths(filePaths);
    for (const auto& path : filePaths)
        log("  → " + lastPathComponent(path), LogColor::dim);

    Mine mine{displayName(filePaths),
              filePaths,
              choices.language,
              choices.story,
              "Extracting audio from files...",
              " words transcribed across ",
              "✓ Complete — we found gems!",
              false};
    co_await mineFootage(std::move(mine));
}

QCoro::Task<> LocalPipeline::runFromProject(SavedProject project, StoryChoices choices) {
    const auto self = shared_from_this();
    beginRun();
    auto transcript = loadProject(project);
    setLastMediaPaths(project.mediaPaths);
    log("$ zuvo mine --reload " + project.timeline, LogColor::dim);
    log("✓ Loaded saved project — " + std::to_string(transcript.segments.size()) + " segments", LogColor::green);
    log("  Skipping transcription (cached)", LogColor::dim);
    setProgress(progressProjectAnalysis);

    Mine mine{project.timeline,
              project.mediaPaths,
              project.language,
              choices,
              {},
              " words across ",
              "✓ Complete — new style applied!",
              true};
    std::optional<TranscriptResult> known = std::move(transcript);
    co_await tellStory(std::move(mine), std::move(known));
}

QCoro::Task<> LocalPipeline::mineFootage(Mine mine) {
    co_await probeAllMedia(mine.mediaPaths);
    if (m_cancelled)
        co_return;
    setProgress(progressMediaKnown);
    auto outcome = co_await obtainTranscript(mine);
    if (outcome.goesOn)
        co_await tellStory(std::move(mine), std::move(outcome.transcript));
}

QCoro::Task<LocalPipeline::TranscriptOutcome> LocalPipeline::obtainTranscript(Mine mine) {
    TranscriptOutcome outcome;
    outcome.transcript = loadCachedTranscript(mine.mediaPaths);
    if (outcome.transcript) {
        log("✓ Found cached transcript — " + transcriptSize(*outcome.transcript), LogColor::green);
        log("  Skipping audio extraction + Whisper (saved ~$1)", LogColor::dim);
        outcome.goesOn = true;
    } else {
        outcome = co_await transcribeFootage(mine);
        if (!outcome.goesOn)
            co_return outcome;
        log(transcriptSize(*outcome.transcript));
        saveTranscriptCache(*outcome.transcript, mine.mediaPaths);
    }
    setProgress(progressTranscriptKnown);
    co_return outcome;
}

// A missing result is tested before the cancellation: a stage that gave nothing fails the run even if it was cancelled.
QCoro::Task<LocalPipeline::TranscriptOutcome> LocalPipeline::transcribeFootage(Mine mine) {
    TranscriptOutcome outcome;
    setStep(PipelineStep::extracting);
    setProgress(progressMediaKnown);
    log(mine.extractionLine);
    const auto audio = co_await extractAudio(mine.mediaPaths);
    if (!audio) {
        fail("Audio extraction failed");
        co_return outcome;
    }
    if (m_cancelled)
        co_return outcome;
    if (const auto bytes = fileSize(*audio))
        log("Audio extracted — " + fixedText(static_cast<double>(*bytes) / bytesPerMegabyte, 1) + " MB");

    setStep(PipelineStep::chunking);
    setProgress(progressChunking);
    log("Preparing audio chunks...");
    const auto chunks = co_await chunkAudio(*audio);
    if (m_cancelled)
        co_return outcome;
    log("Split into " + std::to_string(chunks.size()) + " chunk" + std::string(pluralS(chunks.size())) +
        " for Whisper");

    setStep(PipelineStep::transcribing);
    setProgress(progressTranscribing);
    log("⛏ Transcribing with Whisper...", LogColor::accent);
    outcome.transcript = co_await transcribe(chunks, mine.language);
    if (!outcome.transcript)
        fail("Transcription failed");
    else
        outcome.goesOn = !m_cancelled;
    co_return outcome;
}

QCoro::Task<> LocalPipeline::tellStory(Mine mine, std::optional<TranscriptResult> transcript) {
    setStep(PipelineStep::analyzing);
    log(analysisLine, LogColor::accent);
    if (!transcript) {
        fail("No transcript available");
        co_return;
    }
    const auto style =
        buildStylePrompt(mine.story.sliders, mine.story.presetId, mine.story.isMagicMode, mine.story.directorNotes);
    const auto story = co_await analyzeStory(*transcript, mine.story.targetMinutes, mine.language, style);
    if (!story) {
        fail("Story analysis failed");
        co_return;
    }
    if (m_cancelled)
        co_return;
    const auto analysis = co_await assignSourceClips(*story, mine.mediaPaths);
    log("💎 Found " + std::to_string(analysis.structure.acts.size()) + " acts · " +
            std::to_string(analysis.segments.size()) + " moments",
        LogColor::accent);

    setProgress(progressWords);
    setStep(PipelineStep::translating);
    log("⛏ Re-transcribing selected moments at word level...", LogColor::accent);
    const auto wordSegments = co_await wordLevelTranscribe(analysis, mine.mediaPaths, mine.language);
    if (m_cancelled)
        co_return;
    if (!wordSegments.empty()) {
        log("✓ " + std::to_string(totalWords(wordSegments)) + mine.wordsLine + std::to_string(wordSegments.size()) +
                " segments",
            LogColor::green);
        cacheWordTimestamps(wordSegments);
    }

    publishStory(mine, analysis, *transcript, wordSegments);
    if (mine.buildsTimeline) {
        log("Building timeline in Resolve...");
        co_await buildTimelineFromSegmentsFile();
        if (m_cancelled)
            co_return;
    } else {
        log("Segments file written — ready for export");
    }
    setProgress(progressComplete);
    setStep(PipelineStep::complete);
    log(mine.lastLine, LogColor::green);
}

void LocalPipeline::publishStory(const Mine& mine, const MiningResults& analysis, const TranscriptResult& transcript,
                                 const std::vector<WordSegment>& wordSegments) {
    setProgress(progressExports);
    setStep(PipelineStep::building);
    // The project is saved with what stands in `results`, so that is set first.
    setResults(analysis);
    m_lastTranscript = transcript;
    Q_EMIT lastTranscriptChanged();
    setLastExportDir(saveExports(mine.name, analysis, transcript, wordSegments));
    log("✓ Exported SRT, transcript, and story brief", LogColor::green);
    saveProject(mine.name, transcript, mine.mediaPaths, mine.story.presetId, mine.story.targetMinutes);
    writeSegmentsJson(analysis);
}

QCoro::Task<std::optional<std::vector<std::string>>> LocalPipeline::getMediaPaths(std::string timeline) {
    const auto self = shared_from_this();
    auto paths = co_await getTimelineMedia(std::move(timeline));
    co_return paths;
}

QCoro::Task<bool> LocalPipeline::rebuildTimeline(std::string name, std::vector<std::string> mediaPaths) {
    const auto self = shared_from_this();
    if (!m_results)
        co_return false;
    log("Rebuilding timeline in Resolve...");
    const auto story = *m_results;
    const bool rebuilt = co_await buildResolveTimeline(std::move(name), story, std::move(mediaPaths));
    if (rebuilt)
        log("✓ Timeline rebuilt", LogColor::green);
    else
        log("✗ Timeline rebuild failed", LogColor::accent);
    co_return rebuilt;
}

} // namespace zuvo
