#include "base/Paths.h"

namespace zuvo {

namespace {

std::string_view withoutSlashesAtTheEnd(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    return path;
}

} // namespace

std::string lastPathComponent(std::string_view path) {
    path = withoutSlashesAtTheEnd(path);
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos || path.size() == 1)
        return std::string(path);
    return std::string(path.substr(slash + 1));
}

std::string pathExtension(std::string_view path) {
    const auto name = lastPathComponent(path);
    const auto point = name.rfind('.');
    if (point == std::string::npos || point == 0 || point + 1 == name.size())
        return {};
    return name.substr(point + 1);
}

std::string_view withoutExtension(std::string_view path) {
    const auto extension = pathExtension(path);
    if (extension.empty())
        return path;
    path = withoutSlashesAtTheEnd(path);
    return path.substr(0, path.size() - extension.size() - 1);
}

bool isAbsolutePath(std::string_view path) {
    return path.starts_with('/');
}

} // namespace zuvo
