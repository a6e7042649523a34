#pragma once

#include "base/Files.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

// Whether a mine has left what it promises. The stores of a run are silent about failures, and its last line says
// "Complete" whatever became of its files. So whoever has started a run looks for them afterwards, and before it begins
// whether its name can be the name of a folder of projects.
//
//     run ends "complete" ─► unsavedFiles(pipeline.promisedFiles()) ─► none: done
//                                                                 └─► some: say which and why, and hand the story over

/// One state of a file on the disk: a file that was replaced has another one.
struct FileStamp {
    std::uint64_t inode = 0;
    double changed = 0.0; ///< seconds since 1970

    bool operator==(const FileStamp&) const = default;
};

/// Of the file at that path; nothing if there is no regular file.
[[nodiscard]] std::optional<FileStamp> fileStamp(const std::string& path);

/// A file that a run writes for the user or for a later build.
struct PromisedFile {
    std::string path;
    std::optional<std::string> text; ///< what it has to hold; nothing if that cannot be written as JSON
    std::optional<FileStamp> before; ///< what was there before it was written
    /// A build may have laid other subtitles over it: any whole SRT will do.
    bool mayHoldOtherSubtitles = false;
    Readers readers = Readers::ownerAlone;
};

/// A promised file as it is on the disk now.
struct FoundFile {
    std::optional<FileStamp> stamp;
    std::optional<std::string> text; ///< nothing if it cannot be read
};

enum class Shortfall {
    none,
    unwritable, ///< its text cannot be written as JSON
    missing,
    old,     ///< it is the file from before the run
    differs, ///< it does not hold what is in memory
    noJson,  ///< a ".json" that does not parse
};

/// What the file lacks of what was promised. It has to be there, to be another one than before, to hold the text that
/// is in memory, and to parse if it is JSON.
[[nodiscard]] Shortfall shortfallOf(const PromisedFile& promised, const FoundFile& found);

/// Whether the text is subtitles with at least one card, the last one written to its end.
[[nodiscard]] bool isWholeSrt(std::string_view text);

/// A file that could not be saved.
struct UnsavedFile {
    std::string path;
    std::string reason; ///< "the old file is still there (No space left on device)"
};

/// Looks for the files. One that falls short is written once more, which saves it if the fault has gone meanwhile, and
/// else gives the platform's reason.
[[nodiscard]] std::vector<UnsavedFile> unsavedFiles(const std::vector<PromisedFile>& promised);

/// "{path} was not saved: {reason}", the path made harmless.
[[nodiscard]] std::string unsavedMessage(const UnsavedFile& file);

/// The promised text of the file of that name; "" if there is none.
[[nodiscard]] std::string promisedText(const std::vector<PromisedFile>& promised, std::string_view fileName);

/// Writes brief, subtitles, transcript and story into a folder of the user's choice: into the folder itself, or where
/// one of them is there already into a new folder "Zuvo copy" (then "Zuvo copy 2" and so on) in it.
struct CopyOutcome {
    std::string folder;  ///< that holds the files
    std::string failure; ///< for the user; empty if all were written
};
[[nodiscard]] CopyOutcome saveCopies(const std::vector<PromisedFile>& promised, const std::string& folder);

/// Why a mine cannot have that name, for the user; "" if it can. A name with ".." in it may lead out of the folder of
/// projects, where nothing is ever written.
[[nodiscard]] std::string mineNameRefusal(const std::string& projectsDir, const std::string& name);

} // namespace zuvo
