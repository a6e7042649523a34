#pragma once

#include "platform/DesktopOpener.h"

#include <string>
#include <vector>

namespace zuvo::tests {

/// Keeps what would have been opened in the browser.
class KeptUrls final : public DesktopOpener {
public:
    bool openUrl(const std::string& url) override {
        urls.push_back(url);
        return true;
    }
    bool openFile(const std::string& /*path*/) override { return false; }
    bool reveal(const std::string& /*path*/) override { return false; }

    std::vector<std::string> urls;
};

} // namespace zuvo::tests
