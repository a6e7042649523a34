// From source media to what the transcription service accepts: one mono 16 kHz WAV, cut into pieces.

#include "base/Files.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"
#include "resolve/Scripts.h"
#include "steps/ScriptLines.h"

#include <fmt/format.h>

namespace zuvo {

namespace {

/// Length of one chunk in seconds. The service takes about 25 MB at a time, and this is about 9.6 MB.
constexpr double chunkSeconds = 300.0;

/// More chunks than this (over three hundred days of sound) are a broken length and no recording. Each would start a
/// tool, for hours or for ever.
constexpr std::int64_t mostChunks = 100'000;

/// What a chunk of unknown length counts as.
constexpr double unknownDuration = 300.0;

void appendAudioFormat(std::vector<std::string>& args) {
    args.insert(args.end(), {"-ac", "1", "-ar", "16000", "-acodec", "pcm_s16le"});
}

/// ffmpeg's list of files to lay end to end. A quote inside a path is not escaped, and ffmpeg refuses such a list.
std::string concatList(const std::vector<std::string>& paths) {
    std::vector<std::string> lines;
    lines.reserve(paths.size());
    for (const auto& path : paths)
        lines.push_back("file '" + path + "'");
    return join(lines, "\n");
}

} // namespace

QCoro::Task<std::optional<std::vector<std::string>>> LocalPipeline::getTimelineMedia(std::string timeline) {
    const auto self = shared_from_this();
    const auto output = co_await runScript(timelineMediaScript(m_platform.environment.resolveScriptLib, timeline));
    if (!output)
        co_return std::nullopt;
    co_return mediaPathsOf(*output);
}

QCoro::Task<std::optional<std::string>> LocalPipeline::extractAudio(std::vector<std::string> mediaPaths) {
    const auto self = shared_from_this();
    makeCacheFolder();
    const auto output = cacheFile("extracted_audio.wav");
    std::vector<std::string> args = {"-y"};
    if (mediaPaths.size() == 1) {
        args.insert(args.end(), {"-i", mediaPaths[0]});
    } else {
        const auto list = cacheFile("concat.txt");
        (void)replaceFileAtomically(list, concatList(mediaPaths));
        args.insert(args.end(), {"-f", "concat", "-safe", "0", "-i", list});
    }
    appendAudioFormat(args);
    args.push_back(output);
    makePrivate(output); // one that is there keeps its mode
    const bool extracted = co_await runProcess(m_platform.environment.tools.ffmpeg, std::move(args));
    if (!extracted)
        co_return std::nullopt;
    co_return output;
}

QCoro::Task<std::optional<double>> LocalPipeline::measuredDuration(std::string path) {
    std::vector<std::string> args = {"-v", "quiet", "-show_entries", "format=duration", "-of", "csv=p=0", path};
    const auto output = co_await runProcessOutput(m_platform.environment.tools.ffprobe, std::move(args));
    co_return parseDouble(trimWhiteSpace(output));
}

QCoro::Task<double> LocalPipeline::getAudioDuration(std::string path) {
    const auto seconds = co_await measuredDuration(std::move(path));
    co_return seconds.value_or(unknownDuration);
}

QCoro::Task<std::vector<std::string>> LocalPipeline::chunkAudio(std::string path) {
    const auto self = shared_from_this();
    const auto folder = cacheFile("chunks");
    removeTree(folder);
    makeCacheFolder("chunks");
    const std::vector<std::string> whole(1, path);
    const auto seconds = (co_await measuredDuration(path)).value_or(0.0);
    const auto count = roundedUp(seconds / chunkSeconds);
    if (count <= 1 || count > mostChunks)
        co_return whole;

    std::vector<std::string> chunks;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto start = static_cast<double>(i) * chunkSeconds;
        const auto chunk = folder + fmt::format("/chunk_{:03}.wav", i);
        // The seek stands behind the input: ffmpeg decodes from the start, and the cut is exact to the sample.
        std::vector<std::string> args = {"-y", "-i", path, "-ss", plainText(start), "-t", plainText(chunkSeconds)};
        appendAudioFormat(args);
        args.push_back(chunk);
        const bool cut = co_await runProcess(m_platform.environment.tools.ffmpeg, std::move(args));
        if (cut)
            chunks.push_back(chunk);
    }
    if (chunks.empty())
        co_return whole;
    co_return chunks;
}

} // namespace zuvo
