#pragma once

#include "platform/Environment.h"

#include <memory>
#include <string>

namespace zuvo {

/// Held while a program mines: the cache folder has one set of fixed files, which two mines under one home folder would
/// overwrite for each other. The lock is a file in the folder that it protects, which holds the program and its process
/// number: "zuvo 4711\n". Let go at destruction, and by the system when the program dies, however it dies.
class MineLock {
public:
    /// Name of the file in the cache folder. It stays when the lock is let go, and nobody may remove it.
    static constexpr const char* fileName = "mine.lock";

    /// Takes the lock if nobody has it; never waits. Makes the cache folder and the folder for temporary files, without
    /// which no mine can run. Whoever takes the lock removes what killed runs have left. Where the cache folder cannot
    /// be made there is nothing to protect: the lock counts as held, and a mine ends in a failure of its own.
    explicit MineLock(const Environment& environment);
    ~MineLock();
    MineLock(const MineLock&) = delete;
    MineLock& operator=(const MineLock&) = delete;

    /// The lock that this program holds already, which is then held until the last of both lets it go; else as above.
    /// Never null. One program may mine several times at once.
    [[nodiscard]] static std::shared_ptr<MineLock> ofThisProgram(const Environment& environment);

    [[nodiscard]] bool isHeld() const { return m_file >= 0 || m_hasNothingToProtect; }

    /// Why it is not held, for the user: "Another mine is running (zuvo, process 4711)", or what else is wrong. No full
    /// stop at its end. Empty if it is held.
    [[nodiscard]] const std::string& refusal() const { return m_refusal; }

    /// Another program has it, so that it can be waited for.
    [[nodiscard]] bool isTaken() const { return m_isTaken; }

private:
    int m_file = -1; ///< the lock belongs to this open file
    bool m_hasNothingToProtect = false;
    bool m_isTaken = false;
    std::string m_refusal;
};

} // namespace zuvo
