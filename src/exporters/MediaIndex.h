#pragma once

#include "model/Media.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zuvo::exporters {

/// Finds media files by name: made once a document, asked once a segment. Answers are positions in the list, which the
/// caller keeps alive and unchanged.
class MediaIndex {
public:
    /// Keeps a reference to the list.
    explicit MediaIndex(const std::vector<MediaFileInfo>& mediaFiles);

    /// The first file of exactly this name.
    [[nodiscard]] std::optional<std::size_t> named(std::string_view filename) const;

    /// The first file of this name, or of the same name once both lose their extension. The second test alone decides,
    /// since equal names are equal without it too.
    [[nodiscard]] std::optional<std::size_t> namedAlike(std::string_view name) const;

    /// The first file for which `namedAlike` holds, or whose name contains this one.
    [[nodiscard]] std::optional<std::size_t> namedAlikeOrContaining(std::string_view name) const;

private:
    using Positions = std::unordered_map<std::string_view, std::size_t>;

    const std::vector<MediaFileInfo>& m_mediaFiles;
    Positions m_byName;
    Positions m_byNameWithoutExtension;
};

} // namespace zuvo::exporters
