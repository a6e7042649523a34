#include "platform/AdministratorShell.h"

#include "platform/FileSystem.h"
#include "platform/ForeignWords.h"

#include <QRegularExpression>
#include <QString>
#include <string_view>

namespace zuvo {

namespace {

using Ending = AdministratorOutcome::Ending;

ProcessRequest requestFor(std::string program, std::vector<std::string> arguments) {
    ProcessRequest request;
    request.program = std::move(program);
    request.arguments = std::move(arguments);
    request.workingFolder = "/";
    request.keepsError = true;
    request.hasNoTerminal = true;
    return request;
}

/// Statuses of pkexec's own: the dialog was closed, and no rights were given. A line may end with them too.
constexpr int dismissed = 126;
constexpr int notAuthorized = 127;

/// How pkexec begins when it speaks for itself.
constexpr std::string_view pkexecRefusal = "Error executing command as another user: ";

std::string polkitFailure(const ProcessOutcome& ended) {
    auto words = oneLine(ended.standardError);
    const bool isPkexecsOwn = words.empty() || words.starts_with(pkexecRefusal);
    if (ended.exitStatus == dismissed && isPkexecsOwn)
        return "The password dialog was closed";
    if (ended.exitStatus == notAuthorized && words.find("No authentication agent") != std::string::npos)
        return "This desktop has no dialog that could ask for the administrator's password";
    if (ended.exitStatus == notAuthorized && isPkexecsOwn)
        return "Administrator rights were not given";
    return words;
}

// The coroutines take all they need as arguments, so that they outlive the shell that started them.

QCoro::Task<AdministratorOutcome> runAppleScript(std::shared_ptr<ProcessRunner> processes, ProcessRequest request) {
    const auto ended = co_await processes->run(std::move(request));
    AdministratorOutcome outcome;
    if (!ended.launched) {
        outcome.ending = Ending::couldNotCreate;
    } else if (!ended.succeeded) {
        outcome.ending = Ending::failed;
        outcome.failure = appleScriptFailure(ended.standardError);
    }
    co_return outcome;
}

QCoro::Task<AdministratorOutcome> runByPkexec(std::shared_ptr<ProcessRunner> processes, std::string pkexec,
                                              std::optional<std::string> line) {
    AdministratorOutcome outcome;
    if (!line) {
        outcome.ending = Ending::couldNotCreate;
        co_return outcome;
    }
    if (!fileExists(pkexec)) {
        outcome.ending = Ending::failed;
        outcome.failure = "Administrator rights are asked for by pkexec, which is not installed (package pkexec)";
        co_return outcome;
    }
    auto request = requestFor(std::move(pkexec), {"--disable-internal-agent", "/bin/sh", "-c", std::move(*line)});
    const auto ended = co_await processes->run(std::move(request));
    if (!ended.launched) {
        outcome.ending = Ending::failed;
        outcome.failure = "pkexec could not be started: " + oneLine(ended.launchFailure);
    } else if (!ended.succeeded) {
        outcome.ending = Ending::failed;
        outcome.failure = polkitFailure(ended);
    }
    co_return outcome;
}

} // namespace

std::optional<std::string> shellLineOf(const std::string& appleScriptSource) {
    constexpr std::string_view before = "do shell script \"";
    constexpr std::string_view behind = "\" with administrator privileges";
    std::string_view text = appleScriptSource;
    if (text.size() < before.size() + behind.size() || !text.starts_with(before) || !text.ends_with(behind))
        return std::nullopt;
    text = text.substr(before.size(), text.size() - before.size() - behind.size());

    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"' || text[i] == '\0')
            return std::nullopt;
        if (text[i] == '\\') {
            ++i;
            if (i == text.size() || (text[i] != '"' && text[i] != '\\'))
                return std::nullopt;
        }
        line += text[i];
    }
    return line;
}

std::string withContentsCopied(const std::string& shellLine) {
    constexpr std::string_view copy = "cp -R ";
    std::string changed;
    bool isQuoted = false;
    bool isCopied = false; // the quoted word is what is copied
    for (const char character : shellLine) {
        if (character == '\'') {
            if (isQuoted && isCopied && changed.ends_with('/'))
                changed += '.';
            isCopied = !isQuoted && changed.ends_with(copy);
            isQuoted = !isQuoted;
        }
        changed += character;
    }
    return changed;
}

std::string appleScriptFailure(const std::string& standardError) {
    static const QRegularExpression surroundings(
        QStringLiteral(R"(^\d+:\d+: (?:execution|syntax) error: (.*?)(?: \(-?\d+\))?$)"));
    const auto words = oneLine(standardError);
    const auto match = surroundings.match(QString::fromStdString(words));
    return match.hasMatch() ? match.captured(1).toStdString() : words;
}

QCoro::Task<AdministratorOutcome> AppleScriptShell::run(std::string appleScriptSource) {
    return runAppleScript(m_processes, requestFor(m_osascript, {"-e", std::move(appleScriptSource)}));
}

QCoro::Task<AdministratorOutcome> PolkitShell::run(std::string appleScriptSource) {
    auto line = shellLineOf(appleScriptSource);
    if (line)
        line = withContentsCopied(*line);
    return runByPkexec(m_processes, m_pkexec, std::move(line));
}

std::shared_ptr<AdministratorShell> administratorShell(std::shared_ptr<ProcessRunner> processes) {
#ifdef Q_OS_MACOS
    return std::make_shared<AppleScriptShell>(std::move(processes));
#else
    return std::make_shared<PolkitShell>(std::move(processes));
#endif
}

} // namespace zuvo
