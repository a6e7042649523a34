#include "endtoend/World.h"

#include "fakes/CoroutineTest.h"
#include "platform/Environment.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace zuvo::endtoend {

std::vector<std::string> Ending::log() const {
    constexpr std::size_t timeLength = 6; // "mm:ss "
    auto lines = linesOf(output);
    for (auto& line : lines)
        line.erase(0, std::min(timeLength, line.size()));
    return lines;
}

Running::Running(const std::string& program, const QProcessEnvironment& environment, const std::string& workingFolder,
                 const std::vector<std::string>& words) {
    QStringList arguments;
    for (const auto& word : words)
        arguments.append(QString::fromStdString(word));
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(QString::fromStdString(workingFolder));
    m_process.setStandardInputFile(QProcess::nullDevice());
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                     [this] { m_output += m_process.readAllStandardOutput(); });
    QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process,
                     [this] { m_errors += m_process.readAllStandardError(); });
    m_process.start(QString::fromStdString(program), arguments);
}

Running::~Running() {
    if (hasEnded())
        return;
    m_process.kill();
    m_process.waitForFinished();
}

void Running::press(int signal) const {
    // One that has ended has no id any more, and 0 would be this test's own group.
    if (const auto id = static_cast<pid_t>(processId()); id > 0)
        ::kill(id, signal);
}

Ending Running::end(std::chrono::seconds limit) {
    Ending ending;
    if (!tests::waitUntil([this] { return hasEnded(); }, limit))
        ending.failure = "The program did not end";
    else if (m_process.exitStatus() != QProcess::NormalExit || m_process.error() == QProcess::FailedToStart)
        ending.failure = m_process.errorString().toStdString();
    else
        ending.status = m_process.exitCode();
    ending.output = (m_output + m_process.readAllStandardOutput()).toStdString();
    ending.errors = (m_errors + m_process.readAllStandardError()).toStdString();
    return ending;
}

namespace {

/// Where Python looks for a user's own modules, below the user's base folder.
std::string pythonModulesBelowBase() {
    const std::string base = "/base/";
    QProcess python;
    auto variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("PYTHONUSERBASE"), QString::fromStdString(base));
    python.setProcessEnvironment(variables);
    python.start(QString::fromStdString(fixedToolPath("python3")),
                 {QStringLiteral("-m"), QStringLiteral("site"), QStringLiteral("--user-site")});
    python.waitForFinished();
    return python.readAllStandardOutput().trimmed().toStdString().substr(base.size());
}

} // namespace

World::World() {
    if (!services.listen())
        throw std::runtime_error("No port is free");
    folder.makeFolder("home");
    folder.makeFolder("temporary");
    folder.makeFolder("media");
    set("HOME", home());
    set("TMPDIR", temporary());
    set("OPENAI_API_KEY", openaiKey);
    set("ANTHROPIC_API_KEY", anthropicKey);
    set("OPENAI_BASE_URL", services.transcriptionBase().toStdString());
    set("ANTHROPIC_BASE_URL", services.messagesBase().toStdString());
    writePythonCustomisation("import sys\nsys.modules['DaVinciResolveScript'] = None\n");
    set("PYTHONUSERBASE", folder / "python");
    set("PYTHONDONTWRITEBYTECODE", "1");
    // Tools lie at fixed places, so nothing is found by PATH.
    set("PATH", "/nowhere");
    for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            set(name, qgetenv(name).toStdString());
    }
}

std::string World::cache(const std::string& name) const {
    return home() + "/Library/Caches/ZuvoManager" + (name.empty() ? "" : "/" + name);
}

std::string World::exports(const std::string& project, const std::string& name) const {
    return home() + "/Library/Application Support/ZuvoManager/exports/" + project + (name.empty() ? "" : "/" + name);
}

void World::set(const std::string& variable, const std::string& value) {
    environment.insert(QString::fromStdString(variable), QString::fromStdString(value));
}

void World::writePythonCustomisation(const std::string& script) const {
    static const std::string below = pythonModulesBelowBase();
    folder.write("python/" + below + "/usercustomize.py", script);
}

void World::givenResolve(const Json& resolve) {
    writePythonCustomisation("import sys\nsys.path.insert(0, '" + fakeResolveFolder() + "')\n");
    set("FAKE_RESOLVE_WORLD", folder.write("resolve.json", resolve.dump()));
    set("FAKE_RESOLVE_LOG", folder.write("resolve-calls.jsonl", ""));
}

Json World::resolve() const {
    return jsonOf(folder / "resolve.json");
}

std::vector<Json> World::resolveCalls() const {
    std::vector<Json> calls;
    for (const auto& line : linesOf(bytesOf(folder / "resolve-calls.jsonl")))
        calls.push_back(Json::parse(line));
    return calls;
}

std::unique_ptr<Running> World::begin(const std::vector<std::string>& words) const {
    return std::make_unique<Running>(program, environment, workingFolder, words);
}

Ending World::byShell(const std::string& line, const std::vector<std::string>& words) const {
    return beginByShell(line, words)->end();
}

std::unique_ptr<Running> World::beginByShell(const std::string& line, const std::vector<std::string>& words) const {
    std::vector<std::string> all = {"-c", line, "sh", program};
    all.insert(all.end(), words.begin(), words.end());
    return std::make_unique<Running>("/bin/sh", environment, workingFolder, all);
}

std::vector<qint64> World::processes() const {
    const auto mark = std::string("\0HOME=", 6) + home() + std::string(1, '\0');
    std::vector<qint64> found;
    std::error_code unreadable;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", unreadable)) {
        const auto name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        // Of a process that has ended, or is another user's, nothing can be read.
        const auto process = std::stoll(name);
        if (('\0' + processFile(process, "environ")).find(mark) != std::string::npos)
            found.push_back(process);
    }
    return found;
}

std::string processFile(qint64 process, const std::string& name) {
    std::ifstream file("/proc/" + std::to_string(process) + "/" + name, std::ios::binary);
    // An iterator would throw at a read that fails, as it does once the process has gone.
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

bool exists(const std::string& path) {
    return std::filesystem::exists(path);
}

std::map<std::string, std::string> filesBelow(const std::string& folder) {
    std::map<std::string, std::string> files;
    std::error_code missing;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, missing)) {
        if (entry.is_regular_file())
            files[entry.path().string()] = bytesOf(entry.path().string());
    }
    return files;
}

std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path << " is missing";
    return {std::istreambuf_iterator<char>(file), {}};
}

Json jsonOf(const std::string& path) {
    auto json = Json::parse(bytesOf(path), nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << path << " is no JSON";
    return json;
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder, missing))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines)
        text += line + "\n";
    return text;
}

std::string fakeResolveFolder() {
    return ZUVO_TEST_FOLDER "/fakes/resolve";
}

std::string sampleFolder() {
    return standin::StandIn::defaultSampleFolder().toStdString();
}

std::vector<std::string> samplePaths() {
    return {sampleFolder() + "/harbour_interview_01.m4a", sampleFolder() + "/harbour_interview_02.m4a"};
}

} // namespace zuvo::endtoend
