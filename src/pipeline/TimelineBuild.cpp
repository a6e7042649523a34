// The story as a timeline in Resolve: the build that every run ends with, and the older one behind `rebuildTimeline`.

#include "base/Files.h"
#include "base/Text.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"
#include "resolve/Scripts.h"
#include "steps/ScriptLines.h"

namespace zuvo {

namespace {

constexpr std::size_t shownScriptErrorCharacters = 200;

std::string segmentsText(const std::vector<StorySegment>& segments) {
    OrderedJson list = OrderedJson::array();
    for (const auto& segment : segments)
        list.push_back(encodeRecord(segment));
    return compactText(list).value_or("[]");
}

} // namespace

QCoro::Task<> LocalPipeline::buildTimelineFromSegmentsFile() {
    const auto self = shared_from_this();
    setBuildResult(std::nullopt);
    (void)replaceFileAtomically(cacheFile("build_debug.txt"),
                                "buildTimelineFromSegmentsFile called at " + defaultDateText(m_platform.clock()));
    if (!fileExists(cacheFile("segments.json"))) {
        log("✗ No segments file found", LogColor::accent);
        setBuildResult("✗ No segments file found");
        co_return;
    }
    const auto name = "Zuvo Build — " + shortTimeText(m_platform.clock());
    log("Building timeline in Resolve...");
    const auto script = finalBuildScript(m_platform.environment.resolveScriptLib, name, cacheFile("segments.json"));
    const auto outcome = co_await runBuild(script);
    // Its script lays its own subtitles over those of an export.
    for (auto& promised : m_promisedFiles)
        promised.mayHoldOtherSubtitles = promised.mayHoldOtherSubtitles || promised.path.ends_with("/subtitles.srt");
    if (!outcome.launched) {
        log("✗ Python launch failed: " + outcome.launchFailure, LogColor::accent);
        setBuildResult("✗ Python failed: " + outcome.launchFailure);
        co_return;
    }
    const auto output = decodeUtf8(outcome.standardOutput).value_or("");
    const auto errors = decodeUtf8(outcome.standardError).value_or("");
    (void)replaceFileAtomically(cacheFile("build_output.txt"), "STDOUT:\n" + output + "\n\nSTDERR:\n" + errors);
    if (trimWhiteSpace(output).empty()) {
        log("✗ Python returned no output", LogColor::accent);
        if (!errors.empty())
            log("  stderr: " + firstCharacters(errors, shownScriptErrorCharacters), LogColor::accent);
        setBuildResult("✗ Python returned no output — check Resolve connection");
        co_return;
    }
    setBuildResult(readBuildLines(trimWhiteSpace(output)));
}

QCoro::Task<ProcessOutcome> LocalPipeline::runBuild(std::optional<std::string> script) {
    if (!script) {
        ProcessOutcome refused;
        refused.launched = true;
        co_return refused;
    }
    ProcessRequest request;
    request.program = m_platform.environment.tools.python3;
    request.arguments = {"-c", std::move(*script)};
    request.variables = {{"PYTHONPATH", m_platform.environment.resolveScriptLib}};
    request.workingFolder = scriptWorkingFolder;
    request.keepsOutput = true;
    request.keepsError = true;
    request.makesPrivateFiles = true; // the cards in the cache folder
    auto outcome = co_await m_platform.processes->run(std::move(request));
    co_return outcome;
}

std::string LocalPipeline::readBuildLines(const std::string& output) {
    std::string result = "✗ No response from Resolve";
    for (const auto& line : readScriptLines(output)) {
        switch (line.kind) {
        case ScriptLineKind::log:
            log("  " + line.text, LogColor::dim);
            break;
        case ScriptLineKind::error:
            log("  ✗ " + line.text, LogColor::accent);
            result = "✗ " + line.text;
            break;
        case ScriptLineKind::success:
            log("  ✓ " + line.text, LogColor::green);
            result = "✓ " + line.text;
            break;
        case ScriptLineKind::other:
            break;
        }
    }
    return result;
}

QCoro::Task<bool> LocalPipeline::buildResolveTimeline(std::string name, MiningResults analysis,
                                                      std::vector<std::string> mediaPaths) {
    makeCacheFolder();
    (void)replaceFileAtomically(cacheFile("segments.json"), segmentsText(analysis.segments));
    const auto script =
        firstBuildScript(m_platform.environment.resolveScriptLib, name, cacheFile("segments.json"), mediaPaths);
    const auto output = co_await runScript(script);
    if (!output || output->empty()) {
        log("  Python script failed to execute", LogColor::accent);
        co_return false;
    }
    for (const auto& line : readScriptLines(*output)) {
        if (line.kind == ScriptLineKind::log)
            log("  " + line.text, LogColor::dim);
        else if (line.kind == ScriptLineKind::error)
            log("  ✗ " + line.text, LogColor::accent);
    }
    const auto success = successAnywhere(*output);
    if (success)
        log("  " + *success, LogColor::green);
    co_return success.has_value();
}

} // namespace zuvo
