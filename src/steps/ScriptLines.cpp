#include "steps/ScriptLines.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>

namespace zuvo {

namespace {

constexpr std::string_view logPrefix = "LOG:";
constexpr std::string_view errorPrefix = "ERROR:";
constexpr std::string_view successPrefix = "SUCCESS:";

ScriptLine readScriptLine(std::string_view line) {
    const auto text = trimWhiteSpace(line);
    if (text.starts_with(logPrefix))
        return {ScriptLineKind::log, replaceAll(text, logPrefix, "")};
    if (text.starts_with(errorPrefix))
        return {ScriptLineKind::error, replaceAll(text, errorPrefix, "")};
    if (text.starts_with(successPrefix))
        return {ScriptLineKind::success, replaceAll(text, successPrefix, "")};
    return {ScriptLineKind::other, text};
}

} // namespace

std::vector<ScriptLine> readScriptLines(std::string_view output) {
    std::vector<ScriptLine> lines;
    for (const auto line : split(output, '\n'))
        lines.push_back(readScriptLine(line));
    return lines;
}

bool beginsWithError(std::string_view output) {
    return output.starts_with(errorPrefix);
}

std::string withoutErrorPrefix(std::string_view output) {
    return replaceAll(output, errorPrefix, "");
}

std::vector<std::string> answerLines(std::string_view output) {
    std::vector<std::string> lines;
    for (const auto line : split(output, '\n')) {
        auto text = trimWhiteSpace(line);
        if (!text.empty())
            lines.push_back(std::move(text));
    }
    return lines;
}

std::optional<std::string> successAnywhere(std::string_view output) {
    for (const auto line : split(output, '\n')) {
        if (line.find(successPrefix) != std::string_view::npos)
            return trimWhiteSpace(replaceAll(line, successPrefix, ""));
    }
    return std::nullopt;
}

std::optional<AppendedClips> appendedClips(std::string_view summary) {
    constexpr std::string_view ending = " clips appended";
    if (!summary.ends_with(ending))
        return std::nullopt;
    summary.remove_suffix(ending.size());
    if (const auto blank = summary.rfind(' '); blank != std::string_view::npos)
        summary.remove_prefix(blank + 1);
    const auto slash = summary.find('/');
    if (slash == std::string_view::npos)
        return std::nullopt;
    const auto appended = parseInteger(summary.substr(0, slash));
    const auto total = parseInteger(summary.substr(slash + 1));
    if (!appended || !total)
        return std::nullopt;
    return AppendedClips{*appended, *total};
}

std::optional<std::vector<std::string>> mediaPathsOf(std::string_view output) {
    if (beginsWithError(output))
        return std::nullopt;
    auto paths = answerLines(output);
    std::erase_if(paths, [](const std::string& line) { return line.starts_with(errorPrefix); });
    if (paths.empty())
        return std::nullopt;
    return paths;
}

} // namespace zuvo
