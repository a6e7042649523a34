#pragma once

#include "model/Stores.h"

#include <string>
#include <vector>

namespace zuvo {

// Media of a saved project. A project may come from somebody else, and its paths become arguments of tools, which take
// "http://..." for an address and "-..." for an option. So only an absolute path counts as a path.

/// A saved project whose media can be given to tools.
struct ProjectForUse {
    SavedProject project;
    std::vector<std::string> refused; ///< paths that are not absolute, as the project has them
};

/// The project with "/path/to/{file name}" in place of each path that is not absolute: a file that does not exist,
/// under the name by which exports refer to footage of unknown place. Number, order and names of the media stay as they
/// are.
[[nodiscard]] ProjectForUse withAbsoluteMedia(SavedProject project);

/// What the user is told of those paths, on one line that shows at most three of them; "" if there are none.
[[nodiscard]] std::string refusedMediaMessage(const std::vector<std::string>& refused);

} // namespace zuvo
