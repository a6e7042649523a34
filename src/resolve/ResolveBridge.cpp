#include "resolve/ResolveBridge.h"

#include "base/Text.h"
#include "platform/FileSystem.h"
#include "resolve/Scripts.h"
#include "steps/ScriptLines.h"

#include <QDebug>
#include <algorithm>

namespace zuvo {

ResolveBridgeError::ResolveBridgeError(Case which, const std::string& text)
    : std::runtime_error(description(which, text)), m_case(which) {}

std::string ResolveBridgeError::description(Case which, const std::string& text) {
    switch (which) {
    case Case::notConnected:
        return "Not connected to DaVinci Resolve. Make sure Resolve is running.";
    case Case::pythonNotFound:
        return "Python3 not found. Please install Python 3.";
    case Case::noCurrentProject:
        return "No current project in DaVinci Resolve";
    case Case::audioExtractionFailed:
        return "Failed to extract audio from timeline";
    case Case::timelineBuildFailed:
        return "Failed to build timeline in Resolve";
    case Case::scriptExecutionFailed:
        break;
    }
    return "Script execution failed: " + text;
}

std::vector<std::string> ResolveBridge::pythonPaths() {
    return {"/usr/bin/python3", "/opt/homebrew/bin/python3", "/usr/local/bin/python3"};
}

std::shared_ptr<ResolveBridge> ResolveBridge::create(Platform platform, std::vector<std::string> interpreters) {
    // deleteLater, since the last holder may be an operation that ends inside one of the bridge's own signals.
    return {new ResolveBridge(std::move(platform), interpreters), [](ResolveBridge* bridge) { bridge->deleteLater(); }};
}

ResolveBridge::ResolveBridge(Platform platform, const std::vector<std::string>& interpreters)
    : m_platform(std::move(platform)) {
    const auto found = std::find_if(interpreters.begin(), interpreters.end(), fileExists);
    if (found != interpreters.end())
        m_pythonPath = *found;
}

QCoro::Task<> ResolveBridge::connect() {
    const auto self = shared_from_this();
    if (!m_pythonPath) {
        setStatusMessage("Python not found");
        setConnected(false);
        co_return;
    }
    try {
        const auto script = projectNameScript(m_platform.environment.resolveScriptLib);
        const auto output = co_await runPythonScript(script);
        if (beginsWithError(output)) {
            // Untrimmed, so that the friendly words are reached by an answer without a line end alone.
            const auto reason = withoutErrorPrefix(output);
            setStatusMessage(reason == "NOT_CONNECTED" ? "Resolve not running" : reason);
            setConnected(false);
            setProjectName(std::nullopt);
            co_return;
        }
        setProjectName(trimWhiteSpace(output));
        setStatusMessage("Connected to " + m_projectName.value_or("Unknown Project"));
        setConnected(true);
    } catch (const std::exception& error) {
        setStatusMessage(std::string("Connection failed: ") + error.what());
        setConnected(false);
        setProjectName(std::nullopt);
    }
}

QCoro::Task<> ResolveBridge::getTimelines() {
    const auto self = shared_from_this();
    if (!m_isConnected)
        co_return;
    try {
        const auto script = timelineNamesScript(m_platform.environment.resolveScriptLib);
        const auto output = co_await runPythonScript(script);
        if (!beginsWithError(output))
            setTimelines(answerLines(output));
    } catch (const std::exception& error) {
        qWarning("Failed to get timelines: %s", error.what());
    }
}

QCoro::Task<std::optional<std::string>> ResolveBridge::extractAudio(std::string timeline) {
    const auto self = shared_from_this();
    if (!m_isConnected)
        co_return std::nullopt;
    try {
        const auto script = audioExportScript(m_platform.environment.resolveScriptLib, timeline);
        const auto output = co_await runPythonScript(script);
        if (!beginsWithError(output))
            co_return std::optional(trimWhiteSpace(output));
    } catch (const std::exception& error) {
        qWarning("Failed to extract audio: %s", error.what());
    }
    co_return std::nullopt;
}

QCoro::Task<> ResolveBridge::buildTimeline(MiningResults /*from*/) {
    const auto self = shared_from_this();
    if (!m_isConnected)
        throw ResolveBridgeError(ResolveBridgeError::Case::notConnected);
    const auto name = "Zuvo Mining - " + defaultDateText(m_platform.clock());
    const auto script = emptyTimelineScript(m_platform.environment.resolveScriptLib, name);
    const auto output = co_await runPythonScript(script);
    if (beginsWithError(output))
        throw ResolveBridgeError(ResolveBridgeError::Case::timelineBuildFailed);
    co_await getTimelines();
}

QCoro::Task<std::string> ResolveBridge::runPythonScript(std::optional<std::string> script) {
    if (!m_pythonPath)
        throw ResolveBridgeError(ResolveBridgeError::Case::pythonNotFound);
    if (!script)
        throw ResolveBridgeError(ResolveBridgeError::Case::scriptExecutionFailed);
    const auto& environment = m_platform.environment;
    ProcessRequest request;
    request.program = *m_pythonPath;
    request.arguments = {"-c", std::move(*script)};
    request.variables = {{"RESOLVE_SCRIPT_API", environment.resolveScriptAPI},
                         {"RESOLVE_SCRIPT_LIB", environment.resolveScriptLib},
                         {"PYTHONPATH", environment.resolveScriptLib}};
    request.workingFolder = scriptWorkingFolder;
    request.keepsOutput = true;
    request.keepsError = true;
    auto outcome = co_await m_platform.processes->run(std::move(request));
    if (!outcome.launched)
        throw ScriptLaunchError(outcome.launchFailure);
    if (!outcome.succeeded)
        throw ResolveBridgeError(ResolveBridgeError::Case::scriptExecutionFailed,
                                 decodeUtf8(std::move(outcome.standardError)).value_or("Unknown error"));
    co_return decodeUtf8(std::move(outcome.standardOutput)).value_or("");
}

void ResolveBridge::setConnected(bool connected) {
    if (m_isConnected == connected)
        return;
    m_isConnected = connected;
    Q_EMIT isConnectedChanged();
}

void ResolveBridge::setProjectName(std::optional<std::string> name) {
    if (m_projectName == name)
        return;
    m_projectName = std::move(name);
    Q_EMIT projectNameChanged();
}

void ResolveBridge::setTimelines(std::vector<std::string> timelines) {
    if (m_timelines == timelines)
        return;
    m_timelines = std::move(timelines);
    Q_EMIT timelinesChanged();
}

void ResolveBridge::setCurrentTimeline(std::optional<std::string> timeline) {
    if (m_currentTimeline == timeline)
        return;
    m_currentTimeline = std::move(timeline);
    Q_EMIT currentTimelineChanged();
}

void ResolveBridge::setStatusMessage(std::string message) {
    if (m_statusMessage == message)
        return;
    m_statusMessage = std::move(message);
    Q_EMIT statusMessageChanged();
}

} // namespace zuvo
