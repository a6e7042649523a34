#pragma once

#include "endtoend/World.h"

#include <QProcess>
#include <string>

namespace zuvo::endtoend {

/// What the real ZuvoManager is started with in this world, on no screen.
[[nodiscard]] QProcessEnvironment windowEnvironment(const World& world);
[[nodiscard]] QString windowProgram();

/// The real ZuvoManager in this world, with its window on no screen, under the test's hands (hands/Hands.cpp). Somebody
/// is signed in.
///
/// What is asked for is waited for, as pages come and go; what does not come fails the test.
class OpenWindow {
public:
    explicit OpenWindow(const World& world);
    ~OpenWindow();
    OpenWindow(const OpenWindow&) = delete;
    OpenWindow& operator=(const OpenWindow&) = delete;

    /// Until the item of that objectName can be used.
    void waitFor(const std::string& name) { order("shows " + name); }
    void click(const std::string& name) { order("click " + name); }
    void press(const std::string& key) { order("press " + key); }
    void drop(const std::string& path) { order("drop " + path); }

    /// Presses the window's own button for it, and waits for the end of the program.
    [[nodiscard]] Ending close();

private:
    [[nodiscard]] bool hasEnded() const { return m_process.state() == QProcess::NotRunning; }
    void order(const std::string& line);
    /// Whether the hands could do it.
    [[nodiscard]] bool carryOut(const std::string& line);

    QProcess m_process;
};

} // namespace zuvo::endtoend
