#pragma once

#include "platform/Environment.h"

#include <QLockFile>
#include <memory>
#include <string>

namespace zuvo {

/// Held while a program mines: the cache folder has one set of fixed files, which two mines under one home folder would
/// overwrite for each other. Let go at destruction, and by the system when the program dies.
class MineLock {
public:
    explicit MineLock(const Environment& environment);

    [[nodiscard]] bool isHeld() const { return m_held; }

    /// Why it is not held, for the user.
    [[nodiscard]] const std::string& refusal() const { return m_refusal; }

private:
    std::unique_ptr<QLockFile> m_file;
    bool m_held = false;
    std::string m_refusal;
};

} // namespace zuvo
