#pragma once

#include "platform/Environment.h"

#include <string>

namespace zuvo {

/// Held while a program mines: the cache folder has one set of fixed files, which two mines under one home folder would
/// overwrite for each other. Let go at destruction, and by the system when the program dies, however it dies.
class MineLock {
public:
    /// Takes the lock if no other program of this home folder has it; never waits.
    explicit MineLock(const Environment& environment);
    ~MineLock();
    MineLock(const MineLock&) = delete;
    MineLock& operator=(const MineLock&) = delete;

    [[nodiscard]] bool isHeld() const { return m_refusal.empty(); }

    /// Why it is not held, for the user; empty if it is.
    [[nodiscard]] const std::string& refusal() const { return m_refusal; }

private:
    int m_file = -1; ///< the lock belongs to this open file; the file itself stays, empty
    std::string m_refusal;
};

} // namespace zuvo
