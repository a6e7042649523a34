#pragma once

#include "platform/Environment.h"

#include <string>

namespace zuvo {

/// A file of this program in the environment's temporary folder, for as long as the object lives. It is locked
/// meanwhile, which is how another program sees that it is in use; the lock ends with this program, however it ends.
class TemporaryFile {
public:
    /// Makes the file, empty and for this user alone. `name` begins with "zuvo_" and is used once.
    TemporaryFile(const Environment& environment, const std::string& name);
    /// Removes the file.
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// False if the folder or the file cannot be made.
    [[nodiscard]] bool isMade() const { return m_file >= 0; }
    [[nodiscard]] const std::string& path() const { return m_path; }

    /// Removes all such files of this program, for an end that runs no destructors.
    static void removeAll();

private:
    std::string m_path;
    int m_file = -1;
};

/// Removes the temporary files in that folder whose programs have ended.
void removeAbandonedTemporaryFiles(const std::string& folder);

} // namespace zuvo
