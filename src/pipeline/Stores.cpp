// What is kept so that the same media are not paid for twice: transcripts, and finished mines.

#include "base/Fields.h"
#include "base/Files.h"
#include "base/Text.h"
#include "model/FileLimits.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"
#include "platform/MineLock.h"
#include "steps/LegacyChunks.h"
#include "steps/MineVersions.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace zuvo {

namespace {

/// Bits of the hash that make a cache key.
constexpr std::uint64_t cacheKeyMask = 0x7fffffff;

/// Entries of the cache folder that `clearCaches` leaves: what was paid for, and the lock that others may wait for.
constexpr std::array<std::string_view, 3> keptCacheEntries = {"transcripts", "chunks", MineLock::fileName};

std::optional<std::string> readStoreFile(const std::string& path) {
    return readFile(path, FileLimits::store);
}

template <class Record>
std::optional<Record> loadRecord(const std::string& path) {
    const auto text = readStoreFile(path);
    if (!text)
        return std::nullopt;
    return decodeRecordText<Record>(*text).value;
}

template <class Record>
void storeRecord(const std::string& path, const Record& record) {
    if (const auto text = compactText(encodeRecord(record)))
        (void)replaceFileAtomically(path, *text);
}

std::vector<std::string> chunkFileNames(const std::string& folder) {
    auto names = listFolder(folder).value_or(std::vector<std::string>());
    std::erase_if(names, [](const std::string& name) { return !name.ends_with(".json"); });
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<TranscriptSegment> linesOfChunks(const std::string& folder, const std::vector<std::string>& names) {
    std::vector<TranscriptSegment> lines;
    for (const auto& name : names) {
        const auto text = readStoreFile(folder + "/" + name);
        if (!text)
            continue;
        for (auto& line : legacyChunkLines(*text))
            lines.push_back(std::move(line));
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const TranscriptSegment& a, const TranscriptSegment& b) { return a.start < b.start; });
    return lines;
}

} // namespace

std::string LocalPipeline::cacheDir(std::vector<std::string> mediaPaths) const {
    std::sort(mediaPaths.begin(), mediaPaths.end());
    const auto key = m_platform.textHash(join(mediaPaths, "|")) & cacheKeyMask;
    return m_platform.environment.cacheFolder() + "/transcripts/" + fmt::format("{:x}", key);
}

std::optional<TranscriptResult> LocalPipeline::loadCachedTranscript(const std::vector<std::string>& mediaPaths) {
    const auto cached = loadRecord<CachedTranscript>(cacheDir(mediaPaths) + "/transcript.json");
    if (cached)
        return transcriptFrom(cached->segments, cached->language);
    return loadLegacyBrindlecotCache(mediaPaths);
}

std::optional<TranscriptResult> LocalPipeline::loadLegacyBrindlecotCache(const std::vector<std::string>& mediaPaths) {
    const auto root = m_platform.environment.home + "/.brindlecot";
    for (const auto& entry : listFolder(root).value_or(std::vector<std::string>())) {
        const auto folder = root + "/" + entry + "/chunks";
        const auto names = chunkFileNames(folder);
        if (names.empty() || !legacyChunksMatch(names, mediaPaths))
            continue;
        log("  Found cached transcripts in ~/.brindlecot/" + entry + "/", LogColor::dim);
        auto lines = linesOfChunks(folder, names);
        if (!lines.empty())
            return TranscriptResult{std::move(lines), "es"};
    }
    return std::nullopt;
}

void LocalPipeline::saveTranscriptCache(const TranscriptResult& transcript,
                                        const std::vector<std::string>& mediaPaths) {
    const auto folder = cacheDir(mediaPaths);
    (void)makePrivateFolder(m_platform.environment.cacheFolder(), folder);
    const CachedTranscript cached{transcript.language, cachedSegments(transcript), mediaPaths,
                                  secondsSince1970(m_platform.clock())};
    storeRecord(folder + "/transcript.json", cached);
}

std::string LocalPipeline::projectsDir() const {
    return m_platform.environment.dataFolder() + "/exports";
}

void LocalPipeline::saveProject(const std::string& timeline, const TranscriptResult& transcript,
                                const std::vector<std::string>& mediaPaths, const std::optional<std::string>& presetId,
                                double targetMinutes) {
    const auto folder = folderWithin(projectsDir(), timeline);
    if (!folder)
        return;
    makeProjectFolder(*folder);
    SavedProject project;
    project.timeline = timeline;
    project.createdAt = secondsSince1970(m_platform.clock());
    project.language = transcript.language;
    project.mediaPaths = mediaPaths;
    project.transcript = cachedSegments(transcript);
    project.results = m_results;
    project.presetId = presetId;
    project.targetMinutes = targetMinutes;
    writePromised(*folder + "/project.json", compactText(encodeRecord(project)));
}

TranscriptResult LocalPipeline::loadProject(const SavedProject& project) {
    return transcriptFrom(project.transcript, project.language);
}

std::vector<SavedProject> LocalPipeline::listProjects() const {
    std::vector<SavedProject> projects;
    for (const auto& entry : listFolder(projectsDir()).value_or(std::vector<std::string>())) {
        if (auto project = loadRecord<SavedProject>(projectsDir() + "/" + entry + "/project.json"))
            projects.push_back(std::move(*project));
    }
    std::stable_sort(projects.begin(), projects.end(),
                     [](const SavedProject& a, const SavedProject& b) { return a.createdAt > b.createdAt; });
    return projects;
}

void LocalPipeline::deleteProject(const SavedProject& project) {
    const auto folder = folderWithin(projectsDir(), project.timeline);
    if (folder && liesBelow(projectsDir(), *folder))
        removeTree(*folder);
}

std::int64_t LocalPipeline::nextMineVersion(const std::string& folder) const {
    return nextMineVersionAmong(listFolder(folder).value_or(std::vector<std::string>()));
}

std::vector<MineVersion> LocalPipeline::listMineVersions() const {
    std::vector<MineVersion> versions;
    if (!m_lastExportDir)
        return versions;
    for (const auto& name : listFolder(*m_lastExportDir).value_or(std::vector<std::string>())) {
        const auto number = mineVersionNumber(name);
        if (!number)
            continue;
        const auto path = *m_lastExportDir + "/" + name;
        const auto story = loadRecord<MiningResults>(path);
        if (!story)
            continue;
        const auto date = modificationTime(path).value_or(secondsSince1970(m_platform.clock()));
        versions.push_back(
            {*number, static_cast<std::int64_t>(story->segments.size()), story->estimatedDuration, date});
    }
    std::sort(versions.begin(), versions.end(),
              [](const MineVersion& a, const MineVersion& b) { return a.version < b.version; });
    return versions;
}

void LocalPipeline::clearCaches() {
    const auto cache = m_platform.environment.cacheFolder();
    for (const auto& entry : listFolder(cache).value_or(std::vector<std::string>())) {
        if (std::find(keptCacheEntries.begin(), keptCacheEntries.end(), entry) == keptCacheEntries.end())
            removeTree(cache + "/" + entry);
    }
    removeTree(m_platform.environment.home + "/Desktop/Zuvo_subtitles.srt");
    reset();
}

} // namespace zuvo
