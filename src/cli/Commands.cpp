#include "cli/Commands.h"

#include "base/Numbers.h"
#include "base/Text.h"
#include "cli/Console.h"
#include "cli/Export.h"
#include "cli/Streams.h"
#include "model/Constants.h"
#include "platform/FileSystem.h"
#include "platform/Interrupts.h"
#include "platform/MineLock.h"
#include "platform/ServiceAddresses.h"
#include "resolve/ResolveBridge.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTimer>
#include <functional>
#include <unistd.h>

namespace zuvo {

namespace {

/// An address that would be refused later is refused now, before anything is paid for.
std::string refusedAddress(const Environment& environment) {
    for (const auto& address : {transcriptionAddress(environment), messagesAddress(environment)}) {
        if (address.isRefused())
            return address.refusal;
    }
    return {};
}

void warnOfMissingTools(const Environment& environment) {
    for (const auto& tool : {environment.tools.ffmpeg, environment.tools.ffprobe}) {
        if (!fileExists(tool))
            tell("zuvo: " + tool + " is missing; install ffmpeg first");
    }
}

QCoro::Task<> mineAndQuit(std::shared_ptr<MineSession> session, Command command) {
    const auto status = co_await session->run(std::move(command));
    QCoreApplication::exit(static_cast<int>(status));
}

std::string lockRefusal(const MineLock& lock) {
    return lock.isTaken() ? lock.refusal() + ". Wait for it to end, then try again." : lock.refusal();
}

/// Runs a mine, an audit or a build with its lines on standard output.
ExitStatus runSession(Command command, bool json, const Platform& platform) {
    const MineLock lock(platform.environment);
    if (!lock.isHeld())
        return failWith(lockRefusal(lock));

    const bool hasNoColor = !platform.environment.variable("NO_COLOR").value_or("").empty();
    const Console console(consoleForm(json, ::isatty(STDOUT_FILENO) == 1, hasNoColor), stdout);
    const auto session = std::make_shared<MineSession>(LocalPipeline::create(platform), platform.processes, console);
    const Interrupts interrupts;
    QObject::connect(&interrupts, &Interrupts::interrupted, session.get(), &MineSession::interrupt);
    QTimer::singleShot(0, session.get(), [session, command = std::move(command)] { mineAndQuit(session, command); });
    return static_cast<ExitStatus>(QCoreApplication::exec());
}

/// The same for what asks the services.
ExitStatus runPaidSession(Command command, bool json, const Platform& platform) {
    const auto refusal = refusedAddress(platform.environment);
    if (!refusal.empty())
        return failWith(refusal);
    warnOfMissingTools(platform.environment);
    return runSession(std::move(command), json, platform);
}

/// Why Resolve could not be reached, in words for a reader.
std::string connectionFailure(const ResolveBridge& bridge) {
    using Case = ResolveBridgeError::Case;
    const auto status = trimWhiteSpace(bridge.statusMessage());
    if (status == "NOT_CONNECTED" || status == "Resolve not running")
        return ResolveBridgeError::description(Case::notConnected);
    if (status == "NO_PROJECT")
        return ResolveBridgeError::description(Case::noCurrentProject);
    if (status == "Python not found")
        return ResolveBridgeError::description(Case::pythonNotFound);
    if (status.find("DaVinciResolveScript") != std::string::npos)
        return "Python does not find DaVinci Resolve's scripting module. Is Resolve Studio installed? (" + status + ")";
    return status;
}

QCoro::Task<ExitStatus> listTimelines(std::shared_ptr<ResolveBridge> bridge, bool json) {
    co_await bridge->connect();
    if (!bridge->isConnected())
        co_return failWith(connectionFailure(*bridge));
    co_await bridge->getTimelines();
    for (const auto& name : bridge->timelines()) {
        const OrderedJson object = {{"timeline", name}};
        print(json ? compactText(object).value_or("{}") + "\n" : harmlessText(name) + "\n");
    }
    if (bridge->timelines().empty() && !json)
        print("There are no timelines in the open project.\n");
    co_return ExitStatus::complete;
}

QCoro::Task<> quitAfter(std::function<QCoro::Task<ExitStatus>()> operation) {
    auto status = ExitStatus::failed;
    try {
        status = co_await operation();
    } catch (const std::exception& error) {
        status = failWith(std::string("it ended by an unforeseen failure: ") + error.what());
    }
    QCoreApplication::exit(static_cast<int>(status));
}

/// Runs the event loop for one operation, until that has ended.
ExitStatus runToEnd(std::function<QCoro::Task<ExitStatus>()> operation) {
    QTimer::singleShot(0, [operation = std::move(operation)] { quitAfter(operation); });
    return static_cast<ExitStatus>(QCoreApplication::exec());
}

std::string dateText(double secondsSince1970) {
    constexpr double millisecondsPerSecond = 1000.0;
    const auto date = QDateTime::fromMSecsSinceEpoch(truncated(secondsSince1970 * millisecondsPerSecond));
    return QLocale::c().toString(date, QStringLiteral("yyyy-MM-dd HH:mm")).toStdString();
}

std::string projectLine(const SavedProject& project) {
    const auto moments = project.results ? project.results->segments.size() : 0;
    std::string line = dateText(project.createdAt) + "  " + harmlessText(project.timeline) + "  (" +
                       std::to_string(moments) + " moment" + std::string(pluralS(moments)) + ", target " +
                       plainText(project.targetMinutes) + " min";
    if (project.presetId)
        line += ", " + harmlessText(*project.presetId);
    return line + ")\n";
}

OrderedJson projectObject(const SavedProject& project) {
    OrderedJson object = {{"timeline", project.timeline},
                          {"createdAt", project.createdAt},
                          {"language", project.language},
                          {"mediaPaths", project.mediaPaths},
                          {"moments", project.results ? project.results->segments.size() : 0},
                          {"targetMinutes", project.targetMinutes}};
    object["presetId"] = project.presetId ? OrderedJson(*project.presetId) : OrderedJson(nullptr);
    return object;
}

struct Carrier {
    const Platform& platform;

    ExitStatus operator()(const MineFilesCommand& command) const {
        return runPaidSession(command, command.json, platform);
    }
    ExitStatus operator()(const MineTimelineCommand& command) const {
        return runPaidSession(command, command.json, platform);
    }
    ExitStatus operator()(const ReloadCommand& command) const {
        return runPaidSession(command, command.json, platform);
    }

    ExitStatus operator()(const AuditCommand& command) const { return runPaidSession(command, command.json, platform); }

    ExitStatus operator()(const BuildCommand& command) const { return runSession(command, command.json, platform); }

    ExitStatus operator()(const TimelinesCommand& command) const {
        const auto bridge = ResolveBridge::create(platform);
        return runToEnd([bridge, json = command.json] { return listTimelines(bridge, json); });
    }

    ExitStatus operator()(const ExportCommand& command) const {
        const auto pipeline = LocalPipeline::create(platform);
        return runToEnd([pipeline, command] { return exportProject(pipeline, command); });
    }

    ExitStatus operator()(const ProjectsCommand& command) const {
        const auto projects = LocalPipeline::create(platform)->listProjects();
        for (const auto& project : projects)
            print(command.json ? compactText(projectObject(project)).value_or("{}") + "\n" : projectLine(project));
        if (projects.empty() && !command.json)
            print("There are no saved projects yet.\n");
        return ExitStatus::complete;
    }

    ExitStatus operator()(const DeleteProjectCommand& command) const {
        const auto pipeline = LocalPipeline::create(platform);
        const auto project = newestProject(*pipeline, command.project);
        if (!project)
            return failWith(noSuchProject(command.project));
        pipeline->deleteProject(*project);
        if (newestProject(*pipeline, command.project))
            return failWith("the project \"" + harmlessText(command.project) + "\" could not be removed");
        print("Removed " + harmlessText(command.project) + " with its exports.\n");
        return ExitStatus::complete;
    }

    ExitStatus operator()(const ClearCachesCommand& /*command*/) const {
        const MineLock lock(platform.environment);
        if (!lock.isHeld())
            return failWith(lockRefusal(lock));
        LocalPipeline::create(platform)->clearCaches();
        print("Caches cleared. Transcripts and audio chunks stay.\n");
        return ExitStatus::complete;
    }

    ExitStatus operator()(const KeysCommand& /*command*/) const {
        const auto pipeline = LocalPipeline::create(platform);
        const bool hasOpenai = !pipeline->openaiKey().empty();
        const bool hasAnthropic = !pipeline->anthropicKey().empty();
        print(std::string("OPENAI_API_KEY: ") + (hasOpenai ? "found" : "missing") + "\n");
        print(std::string("ANTHROPIC_API_KEY: ") + (hasAnthropic ? "found" : "missing") + "\n");
        return hasOpenai && hasAnthropic ? ExitStatus::complete : ExitStatus::failed;
    }

    ExitStatus operator()(const VersionCommand& /*command*/) const {
        print(std::string("zuvo ") + Constants::App::version + "\n");
        return ExitStatus::complete;
    }

    ExitStatus operator()(const HelpCommand& command) const {
        print(command.text);
        return ExitStatus::complete;
    }

    ExitStatus operator()(const WrongUsage& command) const {
        tell(command.message);
        return ExitStatus::wrongUsage;
    }
};

} // namespace

ExitStatus carryOut(Command command, const Platform& platform) {
    return std::visit(Carrier{platform}, std::move(command));
}

} // namespace zuvo
