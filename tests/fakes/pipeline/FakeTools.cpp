#include "fakes/pipeline/FakeTools.h"

#include <QCoroFuture>
#include <QPromise>
#include <QTimer>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>

namespace zuvo::tests {

namespace {

bool hasArgument(const ProcessRequest& request, const std::string& text) {
    return std::any_of(request.arguments.begin(), request.arguments.end(),
                       [&](const std::string& argument) { return argument.ends_with(text); });
}

std::string argumentBehind(const ProcessRequest& request, const std::string& name) {
    const auto found = std::find(request.arguments.begin(), request.arguments.end(), name);
    return found == request.arguments.end() || found + 1 == request.arguments.end() ? std::string() : *(found + 1);
}

void writeBytes(const std::string& path, const char* bytes, std::size_t count) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes, static_cast<std::streamsize>(count));
}

void writeSamples(const std::string& path, const std::vector<std::int16_t>& samples) {
    std::string bytes;
    for (const auto sample : samples) {
        const auto bits = static_cast<std::uint16_t>(sample);
        bytes += static_cast<char>(bits & 0xff);
        bytes += static_cast<char>(bits >> 8);
    }
    writeBytes(path, bytes.data(), bytes.size());
}

template <class Value>
Value known(const std::map<std::string, Value>& values, const std::string& key, Value otherwise) {
    const auto found = values.find(key);
    return found == values.end() ? std::move(otherwise) : found->second;
}

} // namespace

QCoro::Task<> CallCounter::turn() {
    ++m_count;
    if (inside)
        inside(m_count);
    QPromise<void> turned;
    turned.start();
    QTimer::singleShot(0, [&turned] { turned.finish(); });
    co_await turned.future();
}

QCoro::Task<ProcessOutcome> FakeProcessRunner::run(ProcessRequest request) {
    requests.push_back(request);
    const auto calls = m_calls;
    co_await calls->turn();
    auto outcome = outcomeOf(request);
    co_return outcome;
}

ProcessOutcome FakeProcessRunner::outcomeOf(const ProcessRequest& request) {
    for (auto rule = m_rules.rbegin(); rule != m_rules.rend(); ++rule) {
        if (rule->first(request))
            return rule->second(request);
    }
    if (request.program.ends_with("/ffprobe"))
        return probe(request);
    if (request.program.ends_with("/ffmpeg"))
        return convert(request);
    if (request.program.ends_with("/python3"))
        return printed("", false);
    ADD_FAILURE() << "Nobody planned a call of " << request.program;
    return notLaunched();
}

ProcessOutcome FakeProcessRunner::probe(const ProcessRequest& request) {
    if (hasArgument(request, "stream=channels"))
        return printed(known<std::string>(channelText, argumentBehind(request, "-i"), "1\n"));
    if (hasArgument(request, "default=nw=1:nk=1"))
        return printed(known<std::string>(durationText, argumentBehind(request, "-i"), ""));
    const auto& path = request.arguments.back();
    return printed(known<std::string>(hasArgument(request, "format=duration") ? durationText : probeJson, path, ""));
}

ProcessOutcome FakeProcessRunner::convert(const ProcessRequest& request) {
    const auto input = argumentBehind(request, "-i");
    const auto filter = argumentBehind(request, "-af");
    if (filter.ends_with("volumedetect")) {
        const auto channel = filter.find("c0=c0") != std::string::npos ? "c0" : "c1";
        const auto report = known<std::string>(volumeReport[input], channel, "");
        writeBytes(request.errorFile, report.data(), report.size());
        return printed({});
    }
    if (argumentBehind(request, "-f") == "s16le")
        writeSamples(request.arguments.back(), known<std::vector<std::int16_t>>(samples, input, {}));
    else
        writeBytes(request.arguments.back(), audioBytes.data(), audioBytes.size());
    return printed({});
}

void FakeProcessRunner::when(Matcher matches, Script answers) {
    m_rules.emplace_back(std::move(matches), std::move(answers));
}

void FakeProcessRunner::when(Matcher matches, ProcessOutcome outcome) {
    when(std::move(matches), [outcome](const ProcessRequest&) { return outcome; });
}

std::vector<std::string> FakeProcessRunner::commandLines() const {
    std::vector<std::string> lines;
    for (const auto& request : requests) {
        auto line = request.program.substr(request.program.rfind('/') + 1);
        for (const auto& argument : request.arguments)
            line += "|" + argument;
        lines.push_back(std::move(line));
    }
    return lines;
}

QCoro::Task<HttpAnswer> FakeHttpClient::send(HttpRequest request) {
    requests.push_back(request);
    const auto calls = m_calls;
    co_await calls->turn();
    HttpAnswer answer;
    if (m_plan.empty()) {
        ADD_FAILURE() << "Nobody planned a request to " << request.url;
        answer.failure = "Nobody planned this request";
        co_return answer;
    }
    answer = std::move(m_plan.front());
    m_plan.pop_front();
    co_return answer;
}

ProcessOutcome printed(std::string standardOutput, bool succeeded) {
    ProcessOutcome outcome;
    outcome.launched = true;
    outcome.succeeded = succeeded;
    outcome.standardOutput = std::move(standardOutput);
    return outcome;
}

ProcessOutcome failed() {
    return printed({}, false);
}

ProcessOutcome notLaunched() {
    ProcessOutcome outcome;
    outcome.launchFailure = "There is no such tool";
    return outcome;
}

FakeProcessRunner::Matcher call(std::string tool, std::vector<std::string> arguments) {
    return [tool = "/" + std::move(tool), arguments = std::move(arguments)](const ProcessRequest& request) {
        return request.program.ends_with(tool) &&
               std::all_of(arguments.begin(), arguments.end(),
                           [&](const std::string& argument) { return hasArgument(request, argument); });
    };
}

FakeProcessRunner::Matcher running(std::optional<std::string> script) {
    return [script = std::move(script)](const ProcessRequest& request) {
        return request.program.ends_with("/python3") && request.arguments.size() == 2 && request.arguments[1] == script;
    };
}

FakeProcessRunner::Matcher writing(std::string file) {
    return [file = std::move(file)](const ProcessRequest& request) {
        return request.program.ends_with("/ffmpeg") && request.arguments.back().ends_with(file);
    };
}

} // namespace zuvo::tests
