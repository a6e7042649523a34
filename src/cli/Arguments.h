#pragma once

#include "exporters/StoryExport.h"
#include "model/Modes.h"
#include "model/Style.h"

#include <QStringList>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zuvo {

/// Style options as they were given. What was not given stays empty, so that a saved project's own values can hold.
struct StyleOptions {
    std::optional<MiningMode> mode;
    std::optional<double> minutes;       ///< target length of the story
    std::optional<std::string> language; ///< a code of LANGUAGES
    std::optional<std::string> presetId;
    std::vector<std::pair<std::string, double>> sliders; ///< slider id and value, in the order given
    bool isMagicMode = false;
    std::string notes;
};

/// Mines files.
struct MineFilesCommand {
    std::vector<std::string> files; ///< absolute
    StyleOptions style;
    bool json = false;
};

/// Mines the media behind a timeline of the project that is open in Resolve, and builds the story there.
struct MineTimelineCommand {
    std::string timeline;
    StyleOptions style;
    bool json = false;
};

/// Tells a saved project anew, in its own style but for what is given.
struct ReloadCommand {
    std::string project;
    StyleOptions style;
    bool json = false;
};

/// Compares a cut in Resolve with the transcript of its footage.
struct AuditCommand {
    std::string timeline;
    bool minesFirst = false; ///< a transcript is found again within one start of the program alone
    bool json = false;
};

/// Builds segments.json as it stands as a new timeline in Resolve.
struct BuildCommand {
    bool json = false;
};

/// Lists the timelines of the project that is open in Resolve.
struct TimelinesCommand {
    bool json = false;
};

/// Writes a saved project's story for another editing system.
struct ExportCommand {
    ExportFormat format = ExportFormat::edl;
    std::string project;
    double framesPerSecond = 24.0;
};

/// Lists the saved projects.
struct ProjectsCommand {
    bool json = false;
};

/// Removes a saved project with its exports.
struct DeleteProjectCommand {
    std::string project;
};

/// Removes all caches but what was paid for.
struct ClearCachesCommand {};

/// Tells whether both keys are found, without showing them.
struct KeysCommand {};

/// Tells the program's version.
struct VersionCommand {};

/// Tells how the program, or one command of it, is used.
struct HelpCommand {
    std::string text; ///< to be printed as it is
};

/// The words on the command line make no command; `message` says what to write.
struct WrongUsage {
    std::string message;
};

using Command = std::variant<MineFilesCommand, MineTimelineCommand, ReloadCommand, AuditCommand, BuildCommand,
                             TimelinesCommand, ExportCommand, ProjectsCommand, DeleteProjectCommand, ClearCachesCommand,
                             KeysCommand, VersionCommand, HelpCommand, WrongUsage>;

/// What the words after the program's name ask for.
[[nodiscard]] Command parseArguments(const QStringList& words);

/// The preset's values if it is known, else the defaults, with the single sliders set on top.
[[nodiscard]] StyleSliders slidersOf(const StyleOptions& style, const std::optional<std::string>& presetId);

} // namespace zuvo
