#include "pipeline/ResultsCheck.h"

#include "base/Files.h"
#include "base/Json.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "platform/FileSystem.h"

#include <algorithm>
#include <array>
#include <sys/stat.h>
#include <system_error>

namespace zuvo {

namespace {

/// What a user needs of a story, beside the project that could not be saved.
constexpr std::array<std::string_view, 4> copiedFiles = {"story_brief.md", "subtitles.srt", "transcript.txt",
                                                         "mining_results.json"};

/// Subtitles of a day of talk have a few megabytes.
constexpr std::uint64_t mostSubtitleBytes = 64ULL * 1024 * 1024;

/// Folders that are tried for a copy before it is given up.
constexpr int mostCopyFolders = 1000;

FoundFile foundFile(const PromisedFile& promised) {
    FoundFile found;
    found.stamp = fileStamp(promised.path);
    // A file of another size holds another text. A build's subtitles may have any size that subtitles have.
    const auto size = fileSize(promised.path).value_or(0);
    const auto expected = promised.text ? promised.text->size() : 0;
    if (found.stamp && (size == expected || (promised.mayHoldOtherSubtitles && size <= mostSubtitleBytes)))
        found.text = readFile(promised.path, std::max<std::uint64_t>(expected, mostSubtitleBytes));
    return found;
}

std::string wordsFor(Shortfall shortfall) {
    switch (shortfall) {
    case Shortfall::none:
        break;
    case Shortfall::unwritable:
        return "it holds a number that JSON cannot hold";
    case Shortfall::missing:
        return "there is no such file";
    case Shortfall::old:
        return "the old file is still there";
    case Shortfall::differs:
        return "it does not hold what was written";
    case Shortfall::noJson:
        return "it cannot be read again";
    }
    return {};
}

/// Nothing if the file is as promised, at the latest after it was written once more.
std::optional<UnsavedFile> unsavedFile(const PromisedFile& promised) {
    const auto shortfall = shortfallOf(promised, foundFile(promised));
    if (shortfall == Shortfall::none)
        return std::nullopt;
    UnsavedFile unsaved{promised.path, wordsFor(shortfall)};
    if (!promised.text)
        return unsaved;
    createFolders(promised.path.substr(0, promised.path.rfind('/')));
    if (const auto error = fileReplacementError(promised.path, *promised.text, promised.readers))
        unsaved.reason += " (" + error.message() + ")";
    else if (shortfallOf(promised, foundFile(promised)) == Shortfall::none)
        return std::nullopt;
    return unsaved;
}

bool holdsACopy(const std::string& folder) {
    return std::any_of(copiedFiles.begin(), copiedFiles.end(),
                       [&folder](std::string_view name) { return fileExists(folder + "/" + std::string(name)); });
}

/// The folder itself, else a new one in it; nothing if there are too many of them.
std::optional<std::string> copyFolder(const std::string& folder) {
    if (!holdsACopy(folder))
        return folder;
    for (int number = 1; number <= mostCopyFolders; ++number) {
        const auto inner = folder + "/Zuvo copy" + (number == 1 ? "" : " " + std::to_string(number));
        if (!fileExists(inner))
            return inner;
    }
    return std::nullopt;
}

} // namespace

std::optional<FileStamp> fileStamp(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return FileStamp{static_cast<std::uint64_t>(status.st_ino), modificationTime(path).value_or(0.0)};
}

Shortfall shortfallOf(const PromisedFile& promised, const FoundFile& found) {
    if (!promised.text)
        return Shortfall::unwritable;
    if (!found.stamp)
        return Shortfall::missing;
    if (promised.before == found.stamp)
        return Shortfall::old;
    if (!found.text)
        return Shortfall::differs;
    if (*found.text != *promised.text && !(promised.mayHoldOtherSubtitles && isWholeSrt(*found.text)))
        return Shortfall::differs;
    if (promised.path.ends_with(".json") && !parseForeignJson(*found.text))
        return Shortfall::noJson;
    return Shortfall::none;
}

bool isWholeSrt(std::string_view text) {
    constexpr std::string_view arrow = " --> ";
    constexpr std::size_t timeLength = std::string_view("00:00:00,000").size();
    const auto last = text.rfind(arrow);
    if (last == std::string_view::npos || last < timeLength)
        return false;
    const auto end = last + arrow.size() + timeLength;
    return end + 1 < text.size() && text[end] == '\n';
}

std::vector<UnsavedFile> unsavedFiles(const std::vector<PromisedFile>& promised) {
    std::vector<UnsavedFile> unsaved;
    for (const auto& one : promised) {
        if (auto file = unsavedFile(one))
            unsaved.push_back(std::move(*file));
    }
    return unsaved;
}

std::string unsavedMessage(const UnsavedFile& file) {
    return harmlessText(file.path) + " was not saved: " + file.reason;
}

std::string promisedText(const std::vector<PromisedFile>& promised, std::string_view fileName) {
    const auto found = std::find_if(promised.begin(), promised.end(), [fileName](const PromisedFile& one) {
        return lastPathComponent(one.path) == fileName;
    });
    return found == promised.end() ? std::string() : found->text.value_or("");
}

CopyOutcome saveCopies(const std::vector<PromisedFile>& promised, const std::string& folder) {
    const auto target = copyFolder(folder);
    if (!target)
        return {folder, "There are too many copies in " + harmlessText(folder)};
    createFolders(*target);
    CopyOutcome outcome{*target, {}};
    for (const auto name : copiedFiles) {
        const auto path = *target + "/" + std::string(name);
        const auto text = promisedText(promised, name);
        if (text.empty() || !outcome.failure.empty())
            continue;
        if (const auto error = fileReplacementError(path, text))
            outcome.failure = harmlessText(path) + " could not be written: " + error.message();
    }
    return outcome;
}

std::string mineNameRefusal(const std::string& projectsDir, const std::string& name) {
    if (folderWithin(projectsDir, name))
        return {};
    return "A mine cannot be called \"" + harmlessText(name) +
           "\": its files would not be in the folder of the projects. Give the file or timeline another name";
}

} // namespace zuvo
