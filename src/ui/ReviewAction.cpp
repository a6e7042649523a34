#include "ui/ReviewAction.h"

#include "base/Files.h"
#include "base/Json.h"
#include "base/Numbers.h"
#include "model/FileLimits.h"
#include "model/MiningResults.h"
#include "platform/FileSystem.h"

#include <utility>

namespace zuvo {

namespace {

std::string folderOf(const std::string& home) {
    return home + "/Library/Application Support/ZuvoManager";
}

Json storedActions(const std::string& file) {
    const auto text = readFile(file, FileLimits::reviewActions);
    auto stored = text ? parseForeignJson(*text) : std::nullopt;
    return stored && stored->is_array() ? *std::move(stored) : Json::array();
}

} // namespace

ReviewAction deletion(const StorySegment& segment, std::size_t position, double timestamp) {
    return {"delete", timestamp, segment.id(), std::nullopt,
            "index " + std::to_string(position) + ", " + fixedText(segment.startTime, 1) + "-" +
                fixedText(segment.endTime, 1) + "s"};
}

ReviewAction reordering(const StorySegment& segment, std::size_t from, std::size_t to, double timestamp) {
    return {"reorder", timestamp, segment.id(), std::nullopt,
            "moved from " + std::to_string(from) + " to " + std::to_string(to)};
}

std::string reviewActionsFile(const std::string& home) {
    return folderOf(home) + "/review_actions.json";
}

void saveReviewActions(const std::string& home, const std::vector<ReviewAction>& actions) {
    if (actions.empty())
        return;
    // One that is there may be shared by the user's own choice.
    if (!fileExists(folderOf(home)))
        (void)makePrivateFolder(folderOf(home), folderOf(home));
    const auto file = reviewActionsFile(home);
    // It would be replaced by the new actions alone.
    if (fileSize(file).value_or(0) > FileLimits::reviewActions)
        return;
    auto all = storedActions(file);
    for (const auto& action : actions)
        all.push_back(Json(encodeRecord(action)));
    if (const auto text = prettySortedText(all))
        (void)replaceFileAtomically(file, *text);
}

} // namespace zuvo
