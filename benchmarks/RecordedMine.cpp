// zuvo, keeping a record of the children that it starts and the requests that it sends: what a mine cannot do without.
//
//     zuvo_recorded_mine RECORD ARGUMENT...     RECORD is the file that is written, the rest as for zuvo
//
// The record, JSON, times in seconds on one clock of the machine:
//
//     {"children": [{"program": "...", "arguments": ["..."]}],
//      "requests": [{"start": 0.0, "end": 0.0}],
//      "ownSeconds": 0.0, "childrenSeconds": 0.0,   processor time
//      "peakBytes": 0}

#include "base/Json.h"
#include "cli/Commands.h"

#include <QCoreApplication>
#include <chrono>
#include <fstream>
#include <iostream>
#include <sys/resource.h>

namespace zuvo {
namespace {

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// What goes over to the machine's own runner, and is noted on its way.
class RecordingRunner final : public ProcessRunner {
public:
    QCoro::Task<ProcessOutcome> run(ProcessRequest request) override {
        auto child = Json::object();
        child["program"] = request.program;
        child["arguments"] = request.arguments;
        m_children.push_back(std::move(child));
        return m_runner.run(std::move(request));
    }

    void endChildren() override { m_runner.endChildren(); }

    [[nodiscard]] const Json& children() const { return m_children; }

private:
    ChildProcessRunner m_runner;
    Json m_children = Json::array();
};

/// The same for requests, which are in flight from the call to the whole answer.
class RecordingClient final : public HttpClient {
public:
    QCoro::Task<HttpAnswer> send(HttpRequest request) override {
        const auto start = now();
        auto answer = co_await m_client.send(std::move(request));
        auto flight = Json::object();
        flight["start"] = start;
        flight["end"] = now();
        m_requests.push_back(std::move(flight));
        co_return std::move(answer);
    }

    [[nodiscard]] const Json& requests() const { return m_requests; }

private:
    NetworkHttpClient m_client;
    Json m_requests = Json::array();
};

double processorSeconds(int whose) {
    rusage usage{};
    getrusage(whose, &usage);
    constexpr double microsecond = 1e-6;
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * microsecond;
}

/// Most memory that this program has held; 0 if the system does not tell. getrusage() would count in whoever started
/// it.
std::int64_t peakBytes() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        std::int64_t kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes)
            return kilobytes * 1024;
    }
    return 0;
}

} // namespace
} // namespace zuvo

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zuvo"));
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::cerr << "zuvo_recorded_mine RECORD ARGUMENT...\n";
        return 2;
    }
    const auto runner = std::make_shared<zuvo::RecordingRunner>();
    const auto client = std::make_shared<zuvo::RecordingClient>();
    auto platform = zuvo::Platform::ofThisMachine();
    platform.processes = runner;
    platform.http = client;
    const auto status = zuvo::carryOut(zuvo::parseArguments(arguments.mid(2)), platform);

    auto record = zuvo::Json::object();
    record["ownSeconds"] = zuvo::processorSeconds(RUSAGE_SELF);
    record["childrenSeconds"] = zuvo::processorSeconds(RUSAGE_CHILDREN);
    record["peakBytes"] = zuvo::peakBytes();
    record["children"] = runner->children();
    record["requests"] = client->requests();
    std::ofstream file(arguments[1].toStdString());
    file << record.dump() << '\n';
    file.close();
    return file ? static_cast<int>(status) : 1;
}
