#pragma once

#include <stdexcept>
#include <string>

namespace zuvo {

/// Why an update could not be installed; `what()` are the words for the user.
class UpdateError final : public std::runtime_error {
public:
    static UpdateError installFailed(const std::string& text) { return UpdateError("Install failed: " + text); }

    /// Nothing raises it: a download fails with the platform's own words.
    static UpdateError downloadFailed(const std::string& text) { return UpdateError("Download failed: " + text); }

    [[nodiscard]] std::string errorDescription() const { return what(); }

private:
    using std::runtime_error::runtime_error;
};

} // namespace zuvo
