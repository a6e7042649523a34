#pragma once

#include <string>

namespace zuvo {

/// A folder of one attempt to update, with a name that was never used before, which its user alone can enter. Removed
/// with everything in it when the object goes, whatever rights what was unpacked there has.
class WorkFolder {
public:
    /// Makes one in `temporaryFolder` (with a "/" at its end), and removes those there that a killed program left more
    /// than a day ago. Throws std::runtime_error with words for the user if it cannot be made.
    explicit WorkFolder(const std::string& temporaryFolder);
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    [[nodiscard]] std::string partialArchive() const { return m_path + "/plugin-update.download"; }
    [[nodiscard]] std::string archive() const { return m_path + "/plugin-update.zip"; }
    [[nodiscard]] std::string signature() const { return m_path + "/plugin-update.zip.sig"; }
    [[nodiscard]] std::string extracted() const { return m_path + "/extracted"; }

private:
    std::string m_path;
};

} // namespace zuvo
