#pragma once

#include "platform/DesktopOpener.h"

namespace zuvo {

/// The user's own desktop.
class Desktop final : public DesktopOpener {
public:
    bool openUrl(const std::string& url) override;
    bool openFile(const std::string& path) override;
    /// Selects it in the file manager; where none answers, opens the folder that it lies in.
    bool reveal(const std::string& path) override;
};

} // namespace zuvo
