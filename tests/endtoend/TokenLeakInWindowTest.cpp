// The real window, started by a sign-in link: every user of the machine can read the command line of a process, and the
// token is not in it.

#include "endtoend/OpenWindow.h"
#include "endtoend/Secrets.h"
#include "fakes/CoroutineTest.h"

#include <csignal>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>

namespace zuvo::endtoend {
namespace {

using standin::Service;
using testing::HasSubstr;
using namespace std::chrono_literals;

const std::string link = std::string("zuvo-manager://callback?token=zuvo_") + secretPart + "-token";

/// A start of the window by that link, ended with this object.
class LinkedStart {
public:
    explicit LinkedStart(const World& world) {
        m_process.setProcessEnvironment(windowEnvironment(world));
        m_process.start(windowProgram(), {QString::fromStdString(link)});
        EXPECT_TRUE(m_process.waitForStarted());
    }
    ~LinkedStart() {
        signal(SIGCONT);
        m_process.kill();
        m_process.waitForFinished();
    }
    LinkedStart(const LinkedStart&) = delete;
    LinkedStart& operator=(const LinkedStart&) = delete;

    void signal(int number) const {
        if (!hasEnded())
            ::kill(static_cast<pid_t>(m_process.processId()), number);
    }
    [[nodiscard]] bool hasEnded() const { return m_process.state() == QProcess::NotRunning; }
    [[nodiscard]] std::string commandLine() const { return processFile(m_process.processId(), "cmdline"); }
    /// Waits until what the system shows of a running program holds no token.
    void thenTheTokenIsGone() const {
        EXPECT_TRUE(tests::waitUntil(
            [this] {
                const auto shown = commandLine();
                return hasEnded() || (!shown.empty() && !holdsSecret(shown));
            },
            20s))
            << commandLine();
        EXPECT_FALSE(hasEnded()) << "it ended with the token still shown";
        EXPECT_THAT(commandLine(), HasSubstr("ZuvoManager"));
    }

private:
    QProcess m_process;
};

TEST(TokenLeakInWindowTest, neitherTheFirstStartNorALaterOneShowsTheTokenOfItsLink) {
    World world;
    const LinkedStart first(world);
    // Its answer to the link: by then it has long been running.
    ASSERT_TRUE(tests::waitUntil([&world] { return !world.services.requests(Service::me).empty(); }));
    EXPECT_EQ(world.services.requests(Service::me).front().header("Authorization"),
              "Bearer zuvo_" + std::string(secretPart) + "-token");
    EXPECT_FALSE(holdsSecret(first.commandLine())) << first.commandLine();
    first.thenTheTokenIsGone();

    // A later start waits for the first to take its link, which the first cannot while it is stopped.
    first.signal(SIGSTOP);
    const LinkedStart later(world);
    later.thenTheTokenIsGone();
    first.signal(SIGCONT);
    EXPECT_TRUE(tests::waitUntil([&later] { return later.hasEnded(); }));
    EXPECT_TRUE(tests::waitUntil([&world] { return world.services.requests(Service::me).size() == 2; }));
}

} // namespace
} // namespace zuvo::endtoend
