#pragma once

#include <stdexcept>
#include <string>

namespace zuvo {

/// Why the plugin could not be installed or removed; `what()` are the words for the user.
class PluginError final : public std::runtime_error {
public:
    static PluginError installFailed(const std::string& text) { return PluginError("Installation failed: " + text); }

    /// Nothing raises it: a removal fails with `installFailed`, as whatever is run with administrator rights.
    static PluginError uninstallFailed(const std::string& text) {
        return PluginError("Uninstallation failed: " + text);
    }

    static PluginError bundleResourcesMissing() { return PluginError("Plugin files not found in app bundle"); }

    [[nodiscard]] std::string errorDescription() const { return what(); }

private:
    using std::runtime_error::runtime_error;
};

} // namespace zuvo
