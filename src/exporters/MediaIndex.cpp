#include "exporters/MediaIndex.h"

#include "base/Paths.h"

namespace zuvo::exporters {

MediaIndex::MediaIndex(const std::vector<MediaFileInfo>& mediaFiles) : m_mediaFiles(mediaFiles) {
    for (std::size_t i = 0; i < mediaFiles.size(); ++i) {
        // emplace keeps the first of several files of one name.
        m_byName.emplace(mediaFiles[i].filename, i);
        m_byNameWithoutExtension.emplace(withoutExtension(mediaFiles[i].filename), i);
    }
}

std::optional<std::size_t> MediaIndex::named(std::string_view filename) const {
    const auto found = m_byName.find(filename);
    if (found == m_byName.end())
        return std::nullopt;
    return found->second;
}

std::optional<std::size_t> MediaIndex::namedAlike(std::string_view name) const {
    const auto found = m_byNameWithoutExtension.find(withoutExtension(name));
    if (found == m_byNameWithoutExtension.end())
        return std::nullopt;
    return found->second;
}

std::optional<std::size_t> MediaIndex::namedAlikeOrContaining(std::string_view name) const {
    const auto alike = namedAlike(name);
    const auto end = alike.value_or(m_mediaFiles.size());
    for (std::size_t i = 0; i < end; ++i) {
        if (m_mediaFiles[i].filename.find(name) != std::string::npos)
            return i;
    }
    return alike;
}

} // namespace zuvo::exporters
