#pragma once

#include "endtoend/World.h"
#include "fakes/CoroutineTest.h"
#include "pipeline/LocalPipeline.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zuvo::endtoend {

/// One child process as it was asked for.
struct ToolCall {
    std::string tool; ///< absolute path
    std::vector<std::string> arguments;
};

/// Keeps what is run, and runs it.
class RecordingProcessRunner final : public ProcessRunner {
public:
    QCoro::Task<ProcessOutcome> run(ProcessRequest request) override {
        calls.push_back({request.program, request.arguments});
        const auto runner = m_runner;
        auto outcome = co_await runner->run(std::move(request));
        co_return outcome;
    }
    void endChildren() override { m_runner->endChildren(); }

    std::vector<ToolCall> calls;

private:
    std::shared_ptr<ChildProcessRunner> m_runner = std::make_shared<ChildProcessRunner>();
};

/// A mine inside the test's own process, for what cannot be set from outside: tool paths, the home folder of the user
/// database, time-outs and identifiers.
class InProcess {
public:
    explicit InProcess(const World& world) : platform(Platform::ofThisMachine()) {
        variables = {{"OPENAI_API_KEY", openaiKey},
                     {"ANTHROPIC_API_KEY", anthropicKey},
                     {"OPENAI_BASE_URL", world.services.transcriptionBase().toStdString()},
                     {"ANTHROPIC_BASE_URL", world.services.messagesBase().toStdString()}};
        auto& environment = platform.environment;
        environment.home = world.home();
        environment.realHomeDir = world.home();
        environment.systemTemporaryFolder = world.temporary();
        environment.variable = [this](const std::string& name) -> std::optional<std::string> {
            const auto found = variables.find(name);
            return found == variables.end() ? std::nullopt : std::optional(found->second);
        };
        platform.processes = processes;
    }
    InProcess(const InProcess&) = delete;
    InProcess& operator=(const InProcess&) = delete;

    std::map<std::string, std::string> variables;
    Platform platform;
    ServiceTimeouts timeouts;
    std::shared_ptr<RecordingProcessRunner> processes = std::make_shared<RecordingProcessRunner>();
    std::shared_ptr<LocalPipeline> pipeline;

    void mine(const std::vector<std::string>& files, const MineChoices& choices = {}) {
        pipeline = LocalPipeline::create(platform, timeouts);
        tests::runToEnd(pipeline->run(files, choices), std::chrono::seconds(60));
    }

    /// Lets the next mine pay for its transcript again, as after a new start of the program.
    void forgetTranscripts() const { std::filesystem::remove_all(platform.environment.cacheFolder() + "/transcripts"); }

    [[nodiscard]] ProbeResult probe(const std::string& file) {
        pipeline = LocalPipeline::create(platform, timeouts);
        return tests::runToEnd(pipeline->probeMediaFile(file)).value_or(ProbeResult());
    }

    [[nodiscard]] PipelineStep step() const { return pipeline->step(); }

    [[nodiscard]] std::vector<std::string> log() const {
        std::vector<std::string> lines;
        for (const auto& line : pipeline->logs())
            lines.push_back(line.text);
        return lines;
    }
};

} // namespace zuvo::endtoend
