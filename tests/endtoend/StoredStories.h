#pragma once

#include "endtoend/World.h"

#include <gmock/gmock.h>
#include <set>
#include <string>

namespace zuvo::endtoend {

/// A file that an interrupted write has left beside its target. It is hidden, and no reader takes it for anything.
inline bool isLeftover(const std::string& path) {
    const auto name = path.substr(path.rfind('/') + 1);
    return name.starts_with(".new-");
}

/// Fails the test for each JSON file of ours that is not whole.
inline void thenEveryJsonFileIsWhole(const World& world) {
    for (const auto& [path, bytes] : filesBelow(world.home())) {
        if (path.ends_with(".json") && !isLeftover(path)) {
            EXPECT_TRUE(Json::accept(bytes)) << path << " has " << bytes.size() << " bytes and is no JSON";
        }
    }
}

/// What the first moments of the stories in a project's folder say: of the newest and of all versions.
inline std::set<std::string> storiesKept(const World& world, const std::string& project) {
    std::set<std::string> stories;
    for (const auto& name : namesIn(world.exports(project))) {
        if (!name.starts_with("mining_results"))
            continue;
        for (const auto& json = jsonOf(world.exports(project, name)); const auto& segment : json.at("segments"))
            stories.insert(segment.at("transcript").get<std::string>());
    }
    return stories;
}

} // namespace zuvo::endtoend
