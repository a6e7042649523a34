#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

// What the Python programs that talk to Resolve print. One message a line:
//
//     LOG:{text}        progress, never affects the result
//     ERROR:{text}      something failed, for this reason
//     SUCCESS:{text}    the task is done; a summary or the answer
//     {text}            a plain answer of a small script, otherwise passed over
//
// Each kind of caller reads the lines in its own way; the differences are meant. Wherever a prefix is removed, every
// occurrence of it in the line goes.

/// By the prefix of the line.
enum class ScriptLineKind { log, error, success, other };

/// One printed line, without white space at its ends.
struct ScriptLine {
    ScriptLineKind kind = ScriptLineKind::other;
    std::string text; ///< without its prefix
};

/// Every line of the output, empty ones included.
[[nodiscard]] std::vector<ScriptLine> readScriptLines(std::string_view output);

/// Whether the whole output is a failure: does it begin with "ERROR:"? A later "ERROR:" is not seen.
[[nodiscard]] bool beginsWithError(std::string_view output);

/// The output without any "ERROR:" in it. Nothing is trimmed: the line end that Python prints stays.
[[nodiscard]] std::string withoutErrorPrefix(std::string_view output);

/// The lines without white space at their ends, empty ones left out.
[[nodiscard]] std::vector<std::string> answerLines(std::string_view output);

/// The first line that holds "SUCCESS:" anywhere, without that and without white space at its ends; nothing if none
/// does.
[[nodiscard]] std::optional<std::string> successAnywhere(std::string_view output);

/// How many moments of how many a build has put on the timeline.
struct AppendedClips {
    std::int64_t appended = 0;
    std::int64_t total = 0;

    [[nodiscard]] bool areAll() const { return appended == total; }
};

/// The figures of the final build's summary, "{appended}/{total} clips appended", whatever precedes them on the line
/// ("✓ 2/3 clips appended"). Nothing for any other text.
[[nodiscard]] std::optional<AppendedClips> appendedClips(std::string_view summary);

/// The paths of a script that prints one a line; nothing if the output begins with "ERROR:" or holds no path. Lines
/// that begin with "ERROR:" are no paths.
[[nodiscard]] std::optional<std::vector<std::string>> mediaPathsOf(std::string_view output);

} // namespace zuvo
