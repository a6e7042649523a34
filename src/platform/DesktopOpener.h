#pragma once

#include <string>

namespace zuvo {

/// Hands things to the desktop: the browser, the default application of a file, the file manager. Tests keep what would
/// have been opened.
class DesktopOpener {
public:
    DesktopOpener() = default;
    virtual ~DesktopOpener() = default;
    DesktopOpener(const DesktopOpener&) = delete;
    DesktopOpener& operator=(const DesktopOpener&) = delete;

    /// Opens a web address in the user's browser. False if the desktop could not take it.
    virtual bool openUrl(const std::string& url) = 0;

    /// Opens a file or folder, by absolute path, with its default application. False if the desktop could not take it.
    virtual bool openFile(const std::string& path) = 0;

    /// Shows the file or folder, by absolute path, in the file manager. False if the desktop could not take it.
    virtual bool reveal(const std::string& path) = 0;
};

} // namespace zuvo
