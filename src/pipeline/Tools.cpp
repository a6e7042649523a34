// External tools and the keys of the model services.

#include "base/Files.h"
#include "base/Secrets.h"
#include "base/Text.h"
#include "model/FileLimits.h"
#include "pipeline/LocalPipeline.h"
#include "platform/TemporaryFile.h"
#include "steps/KeySearch.h"

#include <array>

namespace zuvo {

namespace {

/// Shell start-up files of the home folder, in the order in which they are looked through.
constexpr std::array shellFiles = {".zshrc", ".zshenv", ".bash_profile", ".bashrc"};

} // namespace

QCoro::Task<bool> LocalPipeline::runProcess(std::string path, std::vector<std::string> args) {
    ProcessRequest request;
    request.program = std::move(path);
    request.arguments = std::move(args);
    request.makesPrivateFiles = true;
    const auto outcome = co_await m_platform.processes->run(std::move(request));
    co_return outcome.succeeded;
}

QCoro::Task<std::string> LocalPipeline::runProcessOutput(std::string path, std::vector<std::string> args) {
    ProcessRequest request;
    request.program = std::move(path);
    request.arguments = std::move(args);
    request.keepsOutput = true;
    auto outcome = co_await m_platform.processes->run(std::move(request));
    co_return decodeUtf8(std::move(outcome.standardOutput)).value_or("");
}

QCoro::Task<std::string> LocalPipeline::runProcessStderr(std::string path, std::vector<std::string> args) {
    const TemporaryFile file(m_platform.environment, "zuvo_stderr_" + m_platform.newUuid() + ".txt");
    if (!file.isMade())
        co_return std::string();
    ProcessRequest request;
    request.program = std::move(path);
    request.arguments = std::move(args);
    request.errorFile = file.path();
    const auto outcome = co_await m_platform.processes->run(std::move(request));
    if (!outcome.launched)
        co_return std::string();
    co_return readTextFile(file.path(), FileLimits::toolOutput).value_or("");
}

QCoro::Task<std::optional<std::string>> LocalPipeline::runPython(std::string script) {
    ProcessRequest request;
    request.program = m_platform.environment.tools.python3;
    request.arguments = {"-c", std::move(script)};
    request.variables = {{"PYTHONPATH", m_platform.environment.resolveScriptLib}};
    request.workingFolder = scriptWorkingFolder;
    request.keepsOutput = true;
    auto outcome = co_await m_platform.processes->run(std::move(request));
    if (!outcome.launched)
        co_return std::nullopt;
    co_return decodeUtf8(std::move(outcome.standardOutput)).value_or("");
}

QCoro::Task<std::optional<std::string>> LocalPipeline::runScript(std::optional<std::string> script) {
    if (!script)
        co_return std::string();
    auto output = co_await runPython(std::move(*script));
    co_return output;
}

std::string LocalPipeline::openaiKey() const {
    // Set but empty is an answer too: the shell files are not looked at then.
    if (auto key = m_platform.environment.variable("OPENAI_API_KEY"))
        return *key;
    return readKeyFromZshrc("OPENAI_API_KEY").value_or("");
}

std::string LocalPipeline::anthropicKey() const {
    if (auto key = m_platform.environment.variable("ANTHROPIC_API_KEY"); key && !key->empty())
        return *key;
    if (auto key = readKeyFromFile("anthropic"))
        return *key;
    return readKeyFromZshrc("ANTHROPIC_API_KEY").value_or("");
}

std::string LocalPipeline::withoutKeys(const std::string& text) const {
    const std::array keys = {openaiKey(), anthropicKey()};
    return withMaskedKeys(text, keys);
}

void LocalPipeline::logForeign(const std::string& text, const char* color) {
    log(withoutKeys(text), color);
}

std::optional<std::string> LocalPipeline::readKeyFromFile(const std::string& service) const {
    const auto& home = m_platform.environment.realHomeDir;
    for (const auto& path : {home + "/.config/" + service + "/api_key", home + "/.zuvo/" + service + ".key"}) {
        const auto text = readTextFile(path, FileLimits::key);
        if (!text)
            continue;
        if (auto key = keyInKeyFile(*text))
            return key;
    }
    return std::nullopt;
}

std::optional<std::string> LocalPipeline::readKeyFromZshrc(const std::string& name) const {
    for (const auto* file : shellFiles) {
        const auto text = readTextFile(m_platform.environment.realHomeDir + "/" + file, FileLimits::shellStartUp);
        if (!text)
            continue;
        if (auto key = keyInShellFile(*text, name))
            return key;
    }
    return std::nullopt;
}

} // namespace zuvo
