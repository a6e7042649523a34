#pragma once

#include "platform/DesktopOpener.h"

#include <string>
#include <vector>

namespace zuvo::tests {

/// Keeps what would have been opened and shown; it can be told to take nothing.
class KeptDesktop final : public DesktopOpener {
public:
    bool openUrl(const std::string& url) override {
        urls.push_back(url);
        return takesAll;
    }
    bool openFile(const std::string& path) override {
        files.push_back(path);
        return takesAll;
    }
    bool reveal(const std::string& path) override {
        revealed.push_back(path);
        return takesAll;
    }

    bool takesAll = true;
    std::vector<std::string> urls;
    std::vector<std::string> files;
    std::vector<std::string> revealed;
};

} // namespace zuvo::tests
