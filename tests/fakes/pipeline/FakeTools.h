#pragma once

#include "platform/Http.h"
#include "platform/Processes.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zuvo::tests {

/// Counts what a pipeline asks of the world, tools and services together, and tells the test before the answer goes
/// back. Nothing is answered before the event loop has turned once, as in life.
class CallCounter {
public:
    /// Called inside every call with its number, counted from 1.
    std::function<void(std::size_t)> inside;

    [[nodiscard]] std::size_t count() const { return m_count; }

    /// What every call awaits before its answer.
    QCoro::Task<> turn();

private:
    std::size_t m_count = 0;
};

/// Tools that were never installed. ffprobe knows what the test says of a file; ffmpeg writes the file that it is asked
/// for; Python finds no Resolve, so it ends with 1 and prints nothing. Rules of the test's own come first, the newest
/// before the older ones.
class FakeProcessRunner final : public ProcessRunner {
public:
    using Matcher = std::function<bool(const ProcessRequest&)>;
    using Script = std::function<ProcessOutcome(const ProcessRequest&)>;

    explicit FakeProcessRunner(std::shared_ptr<CallCounter> calls) : m_calls(std::move(calls)) {}

    QCoro::Task<ProcessOutcome> run(ProcessRequest request) override;
    void endChildren() override {}

    void when(Matcher matches, Script answers);
    void when(Matcher matches, ProcessOutcome outcome);

    std::vector<ProcessRequest> requests;

    // What the tools know, by path.
    std::map<std::string, std::string> probeJson;             ///< of -show_streams; else nothing is printed
    std::map<std::string, std::string> durationText;          ///< of format=duration; else nothing is printed
    std::map<std::string, std::string> channelText;           ///< of stream=channels; else "1"
    std::map<std::string, std::vector<std::int16_t>> samples; ///< at 1000 a second; else none
    std::map<std::string, std::map<std::string, std::string>> volumeReport; ///< by path, then channel "c0" or "c1"
    std::string audioBytes = "RIFF some sound";                             ///< of every WAV that ffmpeg writes

    /// Program name and arguments of every request, with "|" between them.
    [[nodiscard]] std::vector<std::string> commandLines() const;

private:
    [[nodiscard]] ProcessOutcome outcomeOf(const ProcessRequest& request);
    [[nodiscard]] ProcessOutcome probe(const ProcessRequest& request);
    [[nodiscard]] ProcessOutcome convert(const ProcessRequest& request);

    std::shared_ptr<CallCounter> m_calls;
    std::vector<std::pair<Matcher, Script>> m_rules;
};

/// Services that answer from a queue. A request that nobody planned fails the test.
class FakeHttpClient final : public HttpClient {
public:
    explicit FakeHttpClient(std::shared_ptr<CallCounter> calls) : m_calls(std::move(calls)) {}

    QCoro::Task<HttpAnswer> send(HttpRequest request) override;

    void then(HttpAnswer answer) { m_plan.push_back(std::move(answer)); }
    void then(int status, std::string body) { then(HttpAnswer{status, std::move(body), {}}); }
    void thenFails(std::string words) { then(HttpAnswer{0, {}, std::move(words)}); }

    [[nodiscard]] std::size_t plannedCount() const { return m_plan.size(); }
    void forgetPlan() { m_plan.clear(); }

    std::vector<HttpRequest> requests;

private:
    std::shared_ptr<CallCounter> m_calls;
    std::deque<HttpAnswer> m_plan;
};

/// A tool that ran, printed this and ended with that status.
[[nodiscard]] ProcessOutcome printed(std::string standardOutput, bool succeeded = true);
[[nodiscard]] ProcessOutcome failed();
[[nodiscard]] ProcessOutcome notLaunched();

/// Requests of the tool with this name that have all of these arguments; an argument also counts if it only ends so
/// (which spares the tests their long paths).
[[nodiscard]] FakeProcessRunner::Matcher call(std::string tool, std::vector<std::string> arguments);

/// Requests of Python to run exactly this script.
[[nodiscard]] FakeProcessRunner::Matcher running(std::optional<std::string> script);

/// Requests of ffmpeg whose output file ends so.
[[nodiscard]] FakeProcessRunner::Matcher writing(std::string file);

} // namespace zuvo::tests
