#pragma once

#include "endtoend/World.h"

#include <string>
#include <vector>

namespace zuvo::endtoend {

/// A clip of the media pool without a timecode of its own.
inline Json clipOf(const std::string& path, const std::string& duration) {
    return {{"File Path", path}, {"Duration", duration}};
}

/// A Resolve in which these clips lie on a timeline of this name, which is the current one.
inline Json resolveWith(const std::string& timeline, const std::vector<Json>& clips) {
    Json items = Json::array();
    for (const auto& clip : clips)
        items.push_back(clip.at("File Path"));
    Json lane;
    lane["name"] = timeline;
    lane["tracks"]["audio"] = Json::array({items});
    Json resolve;
    resolve["mediaPool"]["clips"] = clips;
    resolve["timelines"] = Json::array({lane});
    resolve["currentTimeline"] = timeline;
    return resolve;
}

/// A Resolve that holds the sample interview on a timeline.
inline Json resolveWithSample(const std::string& timeline) {
    const auto paths = samplePaths();
    return resolveWith(timeline, {clipOf(paths[0], "00:01:03:02"), clipOf(paths[1], "00:01:05:07")});
}

/// The timelines whose names begin so, in Resolve's order.
inline std::vector<Json> timelinesNamed(const Json& resolve, const std::string& beginning) {
    std::vector<Json> found;
    for (const auto& timeline : resolve.at("timelines")) {
        if (timeline.at("name").get<std::string>().starts_with(beginning))
            found.push_back(timeline);
    }
    return found;
}

} // namespace zuvo::endtoend
