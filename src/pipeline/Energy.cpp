// The sound behind the transcript: which channel holds the voice, and how loud every line is.

#include "base/Numbers.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"
#include "platform/TemporaryFile.h"

#include <array>

namespace zuvo {

namespace {

/// Where in a file the two channels are compared, as fractions of its length.
constexpr std::array channelProbePlaces = {0.2, 0.5, 0.8};

/// Length of a file whose length ffprobe does not tell, in seconds.
constexpr double unknownSourceDuration = 300.0;

/// Seconds that one measurement of a channel takes in.
constexpr const char* channelProbeSeconds = "5";

} // namespace

QCoro::Task<LocalPipeline::EnergyProfile> LocalPipeline::measureEnergy(TranscriptResult transcript) {
    log("  Extracting audio energy profile...", LogColor::dim);
    EnergyProfile profile;
    profile.sources = co_await findSources();
    profile.samples = co_await readSources(profile.sources);
    const auto energies = lineEnergies(transcript.segments, profile.sources, profile.samples);
    profile.thresholds = energyThresholds(energies);
    log(energyLogLine(profile.thresholds), LogColor::dim);
    profile.annotatedTranscript = annotatedTranscript(transcript.segments, energies, profile.thresholds);
    co_return profile;
}

QCoro::Task<std::vector<SourceFile>> LocalPipeline::findSources() {
    std::vector<SourceFile> sources;
    if (const auto probeCache = readProbeCache())
        sources = sourcesFromProbeCache(*probeCache);
    if (!sources.empty())
        co_return sources;
    // Without probe data all files start at 0.0, not one after the other: nothing tells their order.
    for (const auto& path : m_lastMediaPaths.value_or(std::vector<std::string>())) {
        const auto seconds = (co_await measuredDuration(path)).value_or(0.0);
        sources.push_back({lastPathComponent(path), path, 0.0, seconds, seconds});
    }
    co_return sources;
}

QCoro::Task<SampleStore> LocalPipeline::readSources(std::vector<SourceFile> sources) {
    SampleStore store;
    std::string channelFilter;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const auto& source = sources[i];
        if (!fileExists(source.path))
            continue;
        // Decided on the first source alone, and for all of them.
        if (i == 0) {
            channelFilter = co_await detectPrimaryChannel(source.path);
            if (!channelFilter.empty()) {
                const bool left = channelFilter.find("c0=c0") != std::string::npos;
                log(std::string("  Primary channel: ") + (left ? "LEFT" : "RIGHT"), LogColor::dim);
            }
        }
        auto samples = co_await extractPCM(source.path, channelFilter);
        log("  " + source.name + ": " + std::to_string(samples.size() / levelSampleRate) + "s extracted",
            LogColor::dim);
        store[source.name] = std::move(samples);
    }
    co_return store;
}

QCoro::Task<std::string> LocalPipeline::detectPrimaryChannel(std::string wavPath) {
    const auto self = shared_from_this();
    const auto& tools = m_platform.environment.tools;
    std::vector<std::string> channelArgs = {
        "-hide_banner", "-i", wavPath, "-show_entries", "stream=channels", "-of", "default=nw=1:nk=1"};
    const auto channelOutput = co_await runProcessOutput(tools.ffprobe, std::move(channelArgs));
    if (parseInteger(trimWhiteSpace(channelOutput)).value_or(0) < 2)
        co_return std::string();
    std::vector<std::string> durationArgs = {
        "-hide_banner", "-i", wavPath, "-show_entries", "format=duration", "-of", "default=nw=1:nk=1"};
    const auto durationOutput = co_await runProcessOutput(tools.ffprobe, std::move(durationArgs));
    const auto duration = parseDouble(trimWhiteSpace(durationOutput)).value_or(unknownSourceDuration);

    ChannelLevels levels;
    for (const double place : channelProbePlaces) {
        const auto position = fixedText(place * duration, 1);
        for (const std::string channel : {"c0", "c1"}) {
            std::vector<std::string> args = {"-hide_banner",
                                             "-nostats",
                                             "-i",
                                             wavPath,
                                             "-ss",
                                             position,
                                             "-t",
                                             channelProbeSeconds,
                                             "-af",
                                             "pan=1c|c0=" + channel + ",volumedetect",
                                             "-f",
                                             "null",
                                             "-"};
            const auto report = co_await runProcessStderr(tools.ffmpeg, std::move(args));
            for (const double level : meanVolumes(report)) {
                (channel == "c0" ? levels.leftSum : levels.rightSum) += level;
                ++levels.samples;
            }
        }
    }
    co_return primaryChannelFilter(levels);
}

QCoro::Task<Samples> LocalPipeline::extractPCM(std::string wavPath, std::string channelFilter) {
    const TemporaryFile raw(m_platform.environment, "zuvo_pcm_" + m_platform.newUuid() + ".raw");
    if (!raw.isMade())
        co_return Samples();
    const auto filter = channelFilter.empty() ? "aresample=1000" : channelFilter + ",aresample=1000";
    std::vector<std::string> args = {"-y",    "-hide_banner", "-nostats",  "-i",      wavPath, "-af",
                                     filter,  "-ac",          "1",         "-ar",     "1000",  "-f",
                                     "s16le", "-acodec",      "pcm_s16le", raw.path()};
    const bool extracted = co_await runProcess(m_platform.environment.tools.ffmpeg, std::move(args));
    if (!extracted)
        co_return Samples();
    co_return readSamples(raw.path()).value_or(Samples());
}

} // namespace zuvo
