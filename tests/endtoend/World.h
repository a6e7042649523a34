#pragma once

#include "fakes/TemporaryFolder.h"
#include "standin/StandIn.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <chrono>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace zuvo::endtoend {

using Json = nlohmann::json;

inline constexpr const char* openaiKey = "made-up-openai-key";
inline constexpr const char* anthropicKey = "made-up-anthropic-key";

/// How a run of the program ended, and all that it said.
struct Ending {
    int status = -1;     ///< exit status; -1 if it did not end by itself
    std::string output;  ///< standard output
    std::string errors;  ///< standard error
    std::string failure; ///< why there is no exit status

    /// The lines of a mine without the "mm:ss " before each.
    [[nodiscard]] std::vector<std::string> log() const;
};

/// The program while it runs.
class Running {
public:
    Running(const std::string& program, const QProcessEnvironment& environment, const std::string& workingFolder,
            const std::vector<std::string>& words);
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    void press(int signal) const; ///< sends the signal to the program alone
    [[nodiscard]] qint64 processId() const { return m_process.processId(); }
    [[nodiscard]] std::string outputSoFar() const { return m_output.toStdString(); }
    [[nodiscard]] bool hasEnded() const { return m_process.state() == QProcess::NotRunning; }

    /// Lets the services answer until the program has ended.
    [[nodiscard]] Ending end(std::chrono::seconds limit = std::chrono::seconds(60));

private:
    QProcess m_process;
    QByteArray m_output;
    QByteArray m_errors;
};

/// All that a run stands in: a home folder, a folder for temporary files and the services, each the test's own.
class World {
public:
    World();

    standin::StandIn services;
    tests::TemporaryFolder folder;
    QProcessEnvironment environment;
    std::string workingFolder = folder.path(); ///< the program is started in it
    std::string program = ZUVO_PROGRAM;        ///< the real one

    [[nodiscard]] std::string home() const { return folder / "home"; }
    [[nodiscard]] std::string temporary() const { return folder / "temporary"; }
    [[nodiscard]] std::string media(const std::string& name) const { return folder / ("media/" + name); }
    [[nodiscard]] std::string cache(const std::string& name = {}) const;
    [[nodiscard]] std::string exports(const std::string& project, const std::string& name = {}) const;

    void set(const std::string& variable, const std::string& value);

    /// From now on Resolve answers as this world says (its form is told in tests/fakes/resolve). Until then there is no
    /// Resolve, whatever is installed on the machine.
    void givenResolve(const Json& resolve);
    /// The world as the scripts have left it.
    [[nodiscard]] Json resolve() const;
    /// What was asked of it, in order: {"object", "method", "arguments", "result"}.
    [[nodiscard]] std::vector<Json> resolveCalls() const;

    [[nodiscard]] std::unique_ptr<Running> begin(const std::vector<std::string>& words) const;
    [[nodiscard]] Ending zuvo(const std::vector<std::string>& words) const { return begin(words)->end(); }
    /// The program by way of a line of the shell, in which it stands as "$@": what a shell does to streams and limits
    /// before the program starts.
    [[nodiscard]] Ending byShell(const std::string& line, const std::vector<std::string>& words) const;

    [[nodiscard]] std::unique_ptr<Running> beginByShell(const std::string& line,
                                                        const std::vector<std::string>& words) const;

    /// Ids of the processes that run in this world, children of children included.
    [[nodiscard]] std::vector<qint64> processes() const;

private:
    /// Python runs this before a script, since it lies in the user's own folder of modules.
    void writePythonCustomisation(const std::string& script) const;
};

[[nodiscard]] bool exists(const std::string& path);

/// What the system says of a process in its file of that name ("stat", "cmdline"); empty if the process has gone, also
/// while the file is read.
[[nodiscard]] std::string processFile(qint64 process, const std::string& name);
/// All files below a folder by their full paths, with their bytes; empty if there is no such folder.
[[nodiscard]] std::map<std::string, std::string> filesBelow(const std::string& folder);
/// The bytes of a file; a missing one fails the test.
[[nodiscard]] std::string bytesOf(const std::string& path);
[[nodiscard]] Json jsonOf(const std::string& path);
/// Names in a folder, sorted; empty if there is no such folder.
[[nodiscard]] std::vector<std::string> namesIn(const std::string& folder);
[[nodiscard]] std::vector<std::string> linesOf(const std::string& text);
[[nodiscard]] std::string joined(const std::vector<std::string>& lines);

/// Folder of the stand-in for Resolve's Python module.
[[nodiscard]] std::string fakeResolveFolder();

/// Folder of the sample interview, and the names of its files.
[[nodiscard]] std::string sampleFolder();
[[nodiscard]] std::vector<std::string> samplePaths();

} // namespace zuvo::endtoend
