#pragma once

#include "model/MiningResults.h"
#include "platform/Platform.h"

#include <QCoroTask>
#include <QObject>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zuvo {

/// Why something that was asked of Resolve could not be done.
class ResolveBridgeError : public std::runtime_error {
public:
    enum class Case {
        notConnected,
        pythonNotFound,
        noCurrentProject,
        audioExtractionFailed,
        timelineBuildFailed,
        scriptExecutionFailed,
    };

    /// `text` belongs to `scriptExecutionFailed` alone.
    explicit ResolveBridgeError(Case which, const std::string& text = {});

    [[nodiscard]] Case which() const { return m_case; }
    /// The words for the user, the same as `what()`.
    [[nodiscard]] static std::string description(Case which, const std::string& text = {});

private:
    Case m_case;
};

/// A view of the running DaVinci Resolve: is it reachable, which project is open, which timelines exist. Every question
/// is a short Python program; there is no link in process.
///
/// Lives on the thread that made it and gives it up only while Python is awaited. Held by shared_ptr alone: an
/// operation keeps its bridge alive until it ends.
class ResolveBridge : public QObject, public std::enable_shared_from_this<ResolveBridge> {
    Q_OBJECT
public:
    /// The interpreters that are looked for, in this order.
    [[nodiscard]] static std::vector<std::string> pythonPaths();

    /// Decides on an interpreter: the first of `interpreters` for which a file exists, for good.
    [[nodiscard]] static std::shared_ptr<ResolveBridge> create(Platform platform,
                                                               std::vector<std::string> interpreters = pythonPaths());

    /// Whether the last `connect` reached Resolve and found a project.
    [[nodiscard]] bool isConnected() const { return m_isConnected; }
    /// The open project's; nothing without a connection.
    [[nodiscard]] const std::optional<std::string>& projectName() const { return m_projectName; }
    [[nodiscard]] const std::vector<std::string>& timelines() const { return m_timelines; } ///< in Resolve's order
    /// The user's choice among `timelines`; nothing here sets it by itself.
    [[nodiscard]] const std::optional<std::string>& currentTimeline() const { return m_currentTimeline; }
    void setCurrentTimeline(std::optional<std::string> timeline);
    [[nodiscard]] const std::string& statusMessage() const { return m_statusMessage; } ///< one line for display

    /// Asks for the open project. Never fails: the outcome is the state above. The timelines are not fetched.
    QCoro::Task<> connect();

    /// Fetches the names of the timelines. Without a connection, or if Resolve does not answer, they stay as they are.
    QCoro::Task<> getTimelines();

    /// Makes the timeline current and gives the path where its sound would lie. Nothing is rendered: no file is
    /// written. Nothing without a connection, or if there is no such timeline.
    QCoro::Task<std::optional<std::string>> extractAudio(std::string timeline);

    /// Makes an empty timeline "Zuvo Mining - {date}"; the story itself is not laid on it. Throws ResolveBridgeError
    /// through the task, or ScriptLaunchError.
    QCoro::Task<> buildTimeline(MiningResults from);

Q_SIGNALS:
    void isConnectedChanged();
    void projectNameChanged();
    void timelinesChanged();
    void currentTimelineChanged();
    void statusMessageChanged();

private:
    ResolveBridge(Platform platform, const std::vector<std::string>& interpreters);

    /// Standard output of the program, untrimmed; "" if it is no UTF-8. Throws `pythonNotFound`,
    /// `scriptExecutionFailed` for an exit status that is not 0, and ScriptLaunchError. No program counts as one that
    /// ended with status 1 and printed nothing.
    QCoro::Task<std::string> runPythonScript(std::optional<std::string> script);

    void setConnected(bool connected);
    void setProjectName(std::optional<std::string> name);
    void setTimelines(std::vector<std::string> timelines);
    void setStatusMessage(std::string message);

    Platform m_platform;
    std::optional<std::string> m_pythonPath;

    bool m_isConnected = false;
    std::optional<std::string> m_projectName;
    std::vector<std::string> m_timelines;
    std::optional<std::string> m_currentTimeline;
    std::string m_statusMessage = "Not connected";
};

/// Python could not be started; the platform's own words.
class ScriptLaunchError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zuvo
