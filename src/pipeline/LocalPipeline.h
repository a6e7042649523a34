#pragma once

#include "base/Json.h"
#include "model/AuditReport.h"
#include "model/Media.h"
#include "model/MiningResults.h"
#include "model/Modes.h"
#include "model/PipelineLog.h"
#include "model/Stores.h"
#include "model/Style.h"
#include "model/Transcript.h"
#include "pipeline/ResultsCheck.h"
#include "platform/Platform.h"
#include "steps/Energy.h"
#include "steps/EnergyThresholds.h"
#include "steps/Probing.h"
#include "steps/TranscriptionFormat.h"
#include "steps/UsedFootage.h"

#include <QCoroTask>
#include <QObject>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zuvo {

/// What the user wants the story to be.
struct StoryChoices {
    double targetMinutes = 5.0; ///< length that the story is asked for
    StyleSliders sliders;
    std::optional<std::string> presetId;
    std::string referenceURL; ///< accepted, and used by no stage
    bool isMagicMode = false;
    std::string directorNotes;
};

/// What a mine of footage is started with.
struct MineChoices {
    MiningMode mode = MiningMode::fullMine;
    std::string language = "auto"; ///< a language code, or "auto"
    StoryChoices story;
};

/// How long a request to a service may go without a byte either way.
struct ServiceTimeouts {
    std::chrono::milliseconds transcription{300'000};
    std::chrono::milliseconds words{120'000};
    std::chrono::milliseconds messages{180'000};
};

/// One version of the story in a project's folder.
struct MineVersion {
    std::int64_t version = 0;
    std::int64_t segments = 0;
    double duration = 0.0; ///< seconds, as estimated by the analysis
    double date = 0.0;     ///< seconds since 1970
};

/// Runs a mine on the user's own machine: the observable state that pages and the command line show, the order of the
/// stages, and the stages themselves, one source unit each.
///
/// Everything happens on the thread it lives on; a stage gives it up only while a child process or a service is
/// awaited. No operation reports failure to its caller: a failure is visible in `step`, `errorMessage` and `logs`. Held
/// by shared_ptr alone: a run keeps its pipeline alive until it ends, whoever else has let go of it.
class LocalPipeline : public QObject, public std::enable_shared_from_this<LocalPipeline> {
    Q_OBJECT
public:
    using WordTimestamp = zuvo::WordTimestamp;
    using WordSegment = zuvo::WordSegment;
    using TimelineClip = zuvo::TimelineClip;

    [[nodiscard]] static std::shared_ptr<LocalPipeline> create(Platform platform, ServiceTimeouts timeouts = {});

    // Observable state.

    [[nodiscard]] PipelineStep step() const { return m_step; }
    [[nodiscard]] double progress() const { return m_progress; } ///< 0 to 1, in fixed points
    [[nodiscard]] const std::vector<PipelineLog>& logs() const { return m_logs; }
    [[nodiscard]] const std::optional<MiningResults>& results() const { return m_results; } ///< set once complete
    /// Why the last run failed, for the user.
    [[nodiscard]] const std::optional<std::string>& errorMessage() const { return m_errorMessage; }
    /// Export folder of the last finished run.
    [[nodiscard]] const std::optional<std::string>& lastExportDir() const { return m_lastExportDir; }
    /// Absolute paths of the media of the last run.
    [[nodiscard]] const std::optional<std::vector<std::string>>& lastMediaPaths() const { return m_lastMediaPaths; }
    /// Outcome of the timeline build, beginning with ✓ or ✗.
    [[nodiscard]] const std::optional<std::string>& buildResult() const { return m_buildResult; }
    /// Outcome of the last audit; an audit that fails leaves none.
    [[nodiscard]] const std::optional<AuditReport>& auditReport() const { return m_auditReport; }
    [[nodiscard]] const ProbeResults& probeResults() const { return m_probeResults; } ///< by file name
    /// Of the last run that came to a story.
    [[nodiscard]] const std::optional<TranscriptResult>& lastTranscript() const { return m_lastTranscript; }

    /// What the last run has to leave on the disk, for whoever started it to look for (`unsavedFiles`). Emptied by
    /// `reset` and by the start of a run.
    [[nodiscard]] const std::vector<PromisedFile>& promisedFiles() const { return m_promisedFiles; }

    /// The world that it works in, for the pages that read and write beside it.
    [[nodiscard]] const Platform& platform() const { return m_platform; }

    // Runs.

    /// Mines the timeline of this name in the open Resolve project, and builds the story there.
    QCoro::Task<> run(std::string timeline, MineChoices choices);

    /// Mines these files (absolute paths).
    QCoro::Task<> run(std::vector<std::string> filePaths, MineChoices choices);

    /// Tells a saved project anew in another style; its transcript is not paid for again.
    QCoro::Task<> runFromProject(SavedProject project, StoryChoices choices);

    /// Compares the cut on a timeline with the transcript of an earlier mine of its media, from this start of the
    /// program; the outcome is `auditReport`. Begins with a `reset`.
    QCoro::Task<> auditTimeline(std::string timeline);

    /// Media behind a timeline; nothing if it cannot be found.
    QCoro::Task<std::optional<std::vector<std::string>>> getMediaPaths(std::string timeline);

    /// Builds the story that stands in `results` as a timeline; false without one, or if the build failed.
    QCoro::Task<bool> rebuildTimeline(std::string name, std::vector<std::string> mediaPaths);

    /// Builds segments.json as a new timeline in Resolve; the outcome is `buildResult`.
    QCoro::Task<> buildTimelineFromSegmentsFile();

    /// Makes a run stop at its next test, without a word. What is paid for by then stays.
    void cancel() { m_cancelled = true; }

    /// Back to the state before the first run, but for media paths, build result, audit report, probe results and the
    /// last transcript. Also takes back a `cancel` that no run has seen yet.
    void reset();

    // Set by the flow, when a saved project is opened and when the user has edited the story.

    void setResults(std::optional<MiningResults> results);
    void setLastMediaPaths(std::optional<std::vector<std::string>> paths);
    void setLastExportDir(std::optional<std::string> folder);

    // Stores.

    /// Folder of the transcript cache of these media, whatever their order, for this start of the program.
    [[nodiscard]] std::string cacheDir(std::vector<std::string> mediaPaths) const;
    /// The transcript in `cacheDir`, else one that an earlier tool has left; nothing without either.
    [[nodiscard]] std::optional<TranscriptResult> loadCachedTranscript(const std::vector<std::string>& mediaPaths);
    /// The lines of an earlier tool's chunk files for these media, by time. Their times stand as they are.
    [[nodiscard]] std::optional<TranscriptResult> loadLegacyBrindlecotCache(const std::vector<std::string>& mediaPaths);
    /// Failures of this and of `saveProject` are silent: a mine ends well without its stores.
    void saveTranscriptCache(const TranscriptResult& transcript, const std::vector<std::string>& mediaPaths);

    /// Folder that holds a folder per project.
    [[nodiscard]] std::string projectsDir() const;
    /// Writes project.json with `results` as they stand. A name that would lead out of `projectsDir` writes nothing.
    void saveProject(const std::string& timeline, const TranscriptResult& transcript,
                     const std::vector<std::string>& mediaPaths, const std::optional<std::string>& presetId,
                     double targetMinutes);
    /// The transcript that the project keeps, its language on every line.
    [[nodiscard]] static TranscriptResult loadProject(const SavedProject& project);
    [[nodiscard]] std::vector<SavedProject> listProjects() const; ///< newest first
    /// Removes the project's folder with all in it; never `projectsDir` itself or anything outside it.
    void deleteProject(const SavedProject& project);
    /// One above the highest version in that folder, or 1.
    [[nodiscard]] std::int64_t nextMineVersion(const std::string& folder) const;
    [[nodiscard]] std::vector<MineVersion> listMineVersions() const; ///< of `lastExportDir`, ascending
    /// Removes all caches but the paid-for transcripts and the chunks, and resets.
    void clearCaches();

    // Stages. Public for the pages that use them alone and for the tests; a run calls them in their order.

    /// Asks ffprobe about each file: `probeResults`, and probe_results.json if any could be probed.
    QCoro::Task<> probeAllMedia(std::vector<std::string> paths);
    /// Nothing if ffprobe gives no JSON for the file.
    QCoro::Task<std::optional<ProbeResult>> probeMediaFile(std::string path);

    /// Media behind a timeline of the open Resolve project, sorted by path; nothing if it cannot be found.
    QCoro::Task<std::optional<std::vector<std::string>>> getTimelineMedia(std::string timeline);
    /// Path of one mono 16 kHz WAV of all sources in order, or nothing.
    QCoro::Task<std::optional<std::string>> extractAudio(std::vector<std::string> mediaPaths);
    /// Seconds; 300.0 if it cannot be measured, so that later offsets keep advancing.
    QCoro::Task<double> getAudioDuration(std::string path);
    /// Paths to transcribe, in order, each of at most 300 s unless the audio cannot be cut or its length cannot be
    /// true; never empty.
    QCoro::Task<std::vector<std::string>> chunkAudio(std::string path);

    /// The chunks' lines in mine time. A chunk that fails leaves a hole; nothing if no line is left.
    QCoro::Task<std::optional<TranscriptResult>> transcribe(std::vector<std::string> chunks, std::string language);
    /// The service's answer to one file, its times from the file's start; nothing, with a line, if that fails.
    QCoro::Task<std::optional<WhisperResponse>> transcribeChunk(std::string path, std::string language);

    /// The words of each moment, from the moment's start. A moment that fails is left out.
    QCoro::Task<std::vector<WordSegment>>
    wordLevelTranscribe(MiningResults analysis, std::vector<std::string> mediaPaths, std::string language);
    /// The words of one file, from the file's start; nothing if the service does not answer with words.
    QCoro::Task<std::optional<std::vector<WhisperWord>>> transcribeWithWords(std::string path, std::string language);
    /// Writes word_timestamps.json; without any segment the file of an earlier mine stays.
    void cacheWordTimestamps(const std::vector<WordSegment>& segments);

    /// ffmpeg filter that keeps the clearly louder of two channels, or "".
    QCoro::Task<std::string> detectPrimaryChannel(std::string wavPath);
    /// The file's samples at `levelSampleRate`, through that filter; empty if it cannot be decoded.
    QCoro::Task<Samples> extractPCM(std::string wavPath, std::string channelFilter);

    /// The story that the model chose, less what the sound speaks against; nothing if there is no usable reply. With
    /// `language` "auto" the model is told the transcript's.
    QCoro::Task<std::optional<MiningResults>> analyzeStory(TranscriptResult transcript, double targetMinutes,
                                                           std::string language, std::string stylePrompt);

    /// Every clip of a timeline that has a source file, of the sound tracks first; nothing if they cannot be read.
    QCoro::Task<std::optional<std::vector<TimelineClip>>> readTimelineClips(std::string timeline);
    /// Asks the model what a cut has missed. What it uses is in the prompt; the report's own figures are the model's.
    QCoro::Task<std::optional<AuditReport>> analyzeAudit(std::string prompt, std::vector<UsedSegment> usedRanges);

    /// The story with its moments' sources by name; as it was if the sources' lengths are not known.
    QCoro::Task<MiningResults> assignSourceClips(MiningResults analysis, std::vector<std::string> mediaPaths);
    /// Writes segments.json, the hand-off to a timeline build, and logs it.
    void writeSegmentsJson(const MiningResults& analysis);
    /// For the review: writes the edited order back before a build. Logs nothing.
    void writeSegmentsJsonPublic(const std::vector<StorySegment>& segments);

    /// Writes the export bundle and gives its folder, whether or not anything could be written.
    std::string saveExports(const std::string& timeline, const MiningResults& analysis,
                            const TranscriptResult& transcript, const std::vector<WordSegment>& wordSegments);

    // Tools and credentials.

    /// True if the tool ran and ended with status 0.
    QCoro::Task<bool> runProcess(std::string path, std::vector<std::string> args);
    /// Standard output, whatever the exit status; "" if it is no UTF-8 or the tool cannot be launched.
    QCoro::Task<std::string> runProcessOutput(std::string path, std::vector<std::string> args);
    /// Standard error, by way of a temporary file; "" as above.
    QCoro::Task<std::string> runProcessStderr(std::string path, std::vector<std::string> args);
    /// Standard output of a Python program; nothing if Python cannot be launched.
    QCoro::Task<std::optional<std::string>> runPython(std::string script);

    /// Read anew at each use and kept nowhere; "" if there is none.
    [[nodiscard]] std::string openaiKey() const;
    [[nodiscard]] std::string anthropicKey() const;

Q_SIGNALS:
    void stepChanged();
    void progressChanged();
    void logAdded();    ///< one line came to the end of `logs`
    void logsCleared(); ///< by `reset`
    void resultsChanged();
    void errorMessageChanged();
    void lastExportDirChanged();
    void lastMediaPathsChanged();
    void buildResultChanged();
    void auditReportChanged();
    void probeResultsChanged();
    void lastTranscriptChanged();

private:
    LocalPipeline(Platform platform, ServiceTimeouts timeouts);

    /// One mine from the first line of its log to the last.
    struct Mine {
        std::string name; ///< of the timeline, the files or the project
        std::vector<std::string> mediaPaths;
        std::string language; ///< the user's choice, not what was heard
        StoryChoices story;
        std::string extractionLine; ///< announces the extraction of audio
        std::string wordsLine;      ///< between the number of words and of segments
        std::string lastLine;
        bool buildsTimeline = false;
    };

    /// What the first half of a mine came to.
    struct TranscriptOutcome {
        bool goesOn = false; ///< neither failed nor cancelled
        std::optional<TranscriptResult> transcript;
    };

    /// What is known of the sound before the model is asked.
    struct EnergyProfile {
        std::vector<SourceFile> sources;
        SampleStore samples;
        EnergyThresholds thresholds;
        std::string annotatedTranscript;
    };

    /// Replaces a file of ours, in silence if it fails, and keeps what it has to hold in `promisedFiles`. Without a
    /// text nothing is written.
    void writePromised(std::string path, std::optional<std::string> text, Readers readers = Readers::ownerAlone);
    void log(std::string text, const char* color = LogColor::muted);
    void fail(std::string message);
    void beginRun();
    void setStep(PipelineStep step);
    void setProgress(double progress);
    void setBuildResult(std::optional<std::string> result);
    void setAuditReport(std::optional<AuditReport> report);

    QCoro::Task<> mineFootage(Mine mine);
    QCoro::Task<TranscriptOutcome> obtainTranscript(Mine mine);
    QCoro::Task<TranscriptOutcome> transcribeFootage(Mine mine);
    QCoro::Task<> tellStory(Mine mine, std::optional<TranscriptResult> transcript);
    void publishStory(const Mine& mine, const MiningResults& analysis, const TranscriptResult& transcript,
                      const std::vector<WordSegment>& wordSegments);

    QCoro::Task<bool> buildResolveTimeline(std::string name, MiningResults analysis,
                                           std::vector<std::string> mediaPaths);
    /// The transcript of an earlier mine of these media; a failure of the audit without one.
    std::optional<TranscriptResult> transcriptForAudit(const std::vector<std::string>& mediaPaths);
    QCoro::Task<> auditCut(std::vector<TimelineClip> clips, std::vector<std::string> mediaPaths,
                           TranscriptResult transcript);

    /// Runs a build's script with both of its streams kept. No script counts as one that printed nothing.
    QCoro::Task<ProcessOutcome> runBuild(std::optional<std::string> script);
    /// Shows what a build's script printed, line by line; the last failure or success is the build's outcome.
    [[nodiscard]] std::string readBuildLines(const std::string& output);
    QCoro::Task<std::optional<double>> measuredDuration(std::string path);
    void saveProbeCache();
    [[nodiscard]] std::optional<Json> readProbeCache() const;

    /// The service's answer to a sound file, or nothing if the file cannot be read.
    QCoro::Task<std::optional<HttpAnswer>> postAudio(std::string path, std::string language,
                                                     TimestampGranularity granularity);
    QCoro::Task<EnergyProfile> measureEnergy(TranscriptResult transcript);
    QCoro::Task<std::vector<SourceFile>> findSources();
    QCoro::Task<SampleStore> readSources(std::vector<SourceFile> sources);
    /// What is said of the key before a request to the model.
    enum class KeyState { logged, notLogged };
    QCoro::Task<std::optional<std::string>> askModel(std::string prompt, KeyState keyState);
    void logKeyState(const std::string& key);
    /// Logs a line that holds words of a service, with both keys masked: it may have repeated one.
    void logForeign(const std::string& text, const char* color);
    [[nodiscard]] std::string withoutKeys(const std::string& text) const;
    /// What is left of a reply once it is cleaned; nothing, with a line, if that cannot be read as text.
    std::optional<std::string> cleanedReply(const std::string& reply);
    void logDecodeFailure(const std::string& failure, const std::string& cleaned);
    std::optional<MiningResults> decodeReply(const std::string& reply);

    /// Like `runPython`. No script, since a name would break out of it, counts as one that ended with status 1 and
    /// printed nothing.
    QCoro::Task<std::optional<std::string>> runScript(std::optional<std::string> script);

    [[nodiscard]] std::optional<std::string> readKeyFromFile(const std::string& service) const;
    [[nodiscard]] std::optional<std::string> readKeyFromZshrc(const std::string& name) const;
    [[nodiscard]] std::string cacheFile(const char* name) const;
    /// Makes the cache folder, or that folder in it, for this user alone. A failure shows in what is written there.
    void makeCacheFolder(const char* name = "") const;
    /// Makes a project's folder; the folder of all data is this user's alone when it is made.
    void makeProjectFolder(const std::string& folder) const;

    Platform m_platform;
    ServiceTimeouts m_timeouts;

    PipelineStep m_step = PipelineStep::idle;
    double m_progress = 0.0;
    std::vector<PipelineLog> m_logs;
    std::optional<MiningResults> m_results;
    std::optional<std::string> m_errorMessage;
    std::optional<std::string> m_lastExportDir;
    std::optional<std::vector<std::string>> m_lastMediaPaths;
    std::optional<std::string> m_buildResult;
    std::optional<AuditReport> m_auditReport;
    ProbeResults m_probeResults;
    std::optional<TranscriptResult> m_lastTranscript;
    std::vector<PromisedFile> m_promisedFiles;

    /// Set by `cancel`, taken back by `reset` and by the start of a run.
    bool m_cancelled = false;
    QDateTime m_startTime;
};

/// Name of a mine of dropped files: the one file's name without its extension (every occurrence of it), or "Dropped
/// Files ({n})".
[[nodiscard]] std::string displayName(const std::vector<std::string>& filePaths);

} // namespace zuvo
