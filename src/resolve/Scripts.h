#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zuvo {

// The Python programs that talk to Resolve. Their texts are the files in scripts/, embedded in the program; here their
// placeholders are filled in, in one pass. How they report is told in steps/ScriptLines.h.
//
// A script that takes a name is nothing if the name would break out of its quotes: then it must not be started, and its
// caller treats it like one that ended with status 1 and printed nothing.
//
// `scriptLib` is the folder of Resolve's Python module.

/// Prints the open project's name.
[[nodiscard]] std::string projectNameScript(const std::string& scriptLib);

/// Prints the names of the project's timelines in Resolve's order, one a line.
[[nodiscard]] std::string timelineNamesScript(const std::string& scriptLib);

/// Makes the timeline current and prints where its sound would lie. Nothing is rendered. The name is put in as it is:
/// nothing for any double quote or backslash.
[[nodiscard]] std::optional<std::string> audioExportScript(const std::string& scriptLib, const std::string& timeline);

/// Makes an empty timeline and makes it current. The name is put in as it is, as above.
[[nodiscard]] std::optional<std::string> emptyTimelineScript(const std::string& scriptLib, const std::string& name);

/// Makes the timeline current and prints the paths of its media in sorted order, one a line.
[[nodiscard]] std::optional<std::string> timelineMediaScript(const std::string& scriptLib, const std::string& timeline);

/// Prints the timeline's clips as JSON.
[[nodiscard]] std::optional<std::string> timelineClipsScript(const std::string& scriptLib, const std::string& timeline);

/// Builds the moments in the file `segmentsPath` as a timeline, with file-relative frames.
[[nodiscard]] std::optional<std::string> firstBuildScript(const std::string& scriptLib, const std::string& name,
                                                          const std::string& segmentsPath,
                                                          const std::vector<std::string>& mediaPaths);

/// Builds the moments in the file `segmentsPath` as a timeline with chapter markers and subtitle cards.
[[nodiscard]] std::optional<std::string> finalBuildScript(const std::string& scriptLib, const std::string& name,
                                                          const std::string& segmentsPath);

/// The paths as a Python list of texts, each path in single quotes within its text: ["'/a/b.wav'", "'/a/c.wav'"].
/// Double quotes, backslashes and control characters are escaped.
[[nodiscard]] std::string quotedPathList(const std::vector<std::string>& paths);

} // namespace zuvo
