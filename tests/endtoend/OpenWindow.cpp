#include "endtoend/OpenWindow.h"

#include "fakes/CoroutineTest.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace zuvo::endtoend {

namespace {

/// Room for a page without scrolling it.
constexpr const char* screen = R"({"screens":[{"name":"screen","x":0,"y":0,"width":1600,"height":1600,"logicalDpi":96,)"
                               R"("logicalBaseDpi":96,"dpr":1}]})";
constexpr const char* tallWindow = "resize 1100 1400";

/// Without what Qt has to say of a desktop that has no screen and no sound.
std::string ownWords(const std::string& errors) {
    auto lines = linesOf(errors);
    std::erase_if(lines, [](const std::string& line) {
        return line == "This plugin does not support raise()" || line.starts_with("PulseAudioService: ");
    });
    return joined(lines);
}

} // namespace

QProcessEnvironment windowEnvironment(const World& world) {
    auto environment = world.environment;
    const auto set = [&environment](const char* name, const std::string& value) {
        environment.insert(QString::fromUtf8(name), QString::fromStdString(value));
    };
    const auto runtime = world.folder.makeFolder("runtime");
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    set("XDG_RUNTIME_DIR", runtime);
    set("QT_QPA_PLATFORM", "offscreen:configfile=" + world.folder.write("screens.json", screen));
    set("QT_QUICK_BACKEND", "software");
    set("QT_PLUGIN_PATH", ZUVO_HANDS_FOLDER);
    set("QT_QPA_GENERIC_PLUGINS", "hands");
    set("ZUVO_SERVICE_URL", world.services.accountBase().toStdString());
    // The renderer without a graphics card keeps pictures in objects of its own that point at each other.
    const auto options = environment.value(QStringLiteral("ASAN_OPTIONS"));
    set("ASAN_OPTIONS", (options.isEmpty() ? "" : options.toStdString() + ":") + "detect_leaks=0");
    return environment;
}

QString windowProgram() {
    return QStringLiteral(ZUVO_MANAGER_PROGRAM);
}

OpenWindow::OpenWindow(const World& world) {
    world.folder.write("home/.zuvo/token.json", R"({"token":"zuvo_kept"})");
    m_process.setProcessEnvironment(windowEnvironment(world));
    m_process.setWorkingDirectory(QString::fromStdString(world.workingFolder));
    m_process.start(windowProgram(), QStringList());
    order(tallWindow);
}

OpenWindow::~OpenWindow() {
    if (hasEnded())
        return;
    m_process.kill();
    m_process.waitForFinished();
}

void OpenWindow::order(const std::string& line) {
    bool isDone = false;
    (void)tests::waitUntil([&] { return hasEnded() || (isDone = carryOut(line)); });
    EXPECT_TRUE(isDone) << line << (hasEnded() ? ": the program has ended\n" : ": it does not come\n")
                        << m_process.readAllStandardError().toStdString();
}

bool OpenWindow::carryOut(const std::string& line) {
    // The hands need a moment to hear, and a page to come.
    tests::runEventLoop(std::chrono::milliseconds(20));
    m_process.write(QByteArray::fromStdString(line + "\n"));
    const bool isAnswered = tests::waitUntil([this] { return m_process.canReadLine() || hasEnded(); });
    return isAnswered && m_process.readLine() == "done\n";
}

Ending OpenWindow::close() {
    click("closeButton");
    Ending ending;
    if (!tests::waitUntil([this] { return hasEnded(); }))
        ending.failure = "The program did not end";
    else if (m_process.exitStatus() != QProcess::NormalExit)
        ending.failure = m_process.errorString().toStdString();
    else
        ending.status = m_process.exitCode();
    ending.output = m_process.readAllStandardOutput().toStdString();
    ending.errors = ownWords(m_process.readAllStandardError().toStdString());
    return ending;
}

} // namespace zuvo::endtoend
