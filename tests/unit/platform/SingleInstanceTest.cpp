#include "platform/SingleInstance.h"

#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"

#include <QCoreApplication>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QProcess>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Start = SingleInstance::Start;

constexpr int patienceMs = 20000;

/// A start in this process, and what it was told.
class Program {
public:
    explicit Program(const Environment& environment, const std::string& shortFolder = "/tmp")
        : instance(environment, shortFolder) {
        QObject::connect(&instance, &SingleInstance::urlReceived,
                         [this](const QString& url) { heard.push_back(url.toStdString()); });
        QObject::connect(&instance, &SingleInstance::raiseRequested, [this] { heard.emplace_back("raise"); });
    }

    SingleInstance instance;
    std::vector<std::string> heard;
};

/// A start in a process of its own.
class OtherProgram {
public:
    explicit OtherProgram(const Environment& environment, const QStringList& url = {}) {
        m_process.start(QCoreApplication::applicationFilePath(),
                        QStringList{QStringLiteral("--instance"),
                                    QString::fromStdString(environment.systemTemporaryFolder),
                                    QString::fromStdString(environment.home), QString::number(patienceMs)} +
                            url);
    }
    ~OtherProgram() { signal(SIGKILL); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    /// The next line that it prints, or "nothing" if none comes.
    std::string line() {
        const bool isThere = waitUntil([this] { return m_process.canReadLine(); });
        return isThere ? m_process.readLine().trimmed().toStdString() : "nothing";
    }

    /// The status with which it ended by itself, or -1.
    int finish() {
        waitUntil([this] { return m_process.state() == QProcess::NotRunning; });
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

    void signal(int number) {
        if (m_process.state() == QProcess::NotRunning)
            return;
        ::kill(static_cast<pid_t>(m_process.processId()), number);
        if (number == SIGKILL)
            m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

class SingleInstances : public testing::Test {
protected:
    SingleInstances() {
        environment.systemTemporaryFolder = folder.path();
        environment.home = folder.makeFolder("home");
    }

    /// Sends bytes as they are to the first; true if the connection is ended from there, and not for its age alone.
    [[nodiscard]] static bool isCutOff(const SingleInstance& first, const QByteArray& bytes) {
        QLocalSocket socket;
        socket.connectToServer(QString::fromStdString(first.socketPath()));
        EXPECT_EQ(socket.state(), QLocalSocket::ConnectedState);
        socket.write(bytes);
        return waitUntil([&] { return socket.state() == QLocalSocket::UnconnectedState; }, 5s) &&
               socket.readAll().isEmpty();
    }

    TemporaryFolder folder;
    Environment environment;
    const std::string url = "zuvo-manager://callback?token=zuvo_abc";
};

} // namespace

TEST_F(SingleInstances, theFirstStartIsTheFirstAndHearsNothingOfItsOwnUrl) {
    Program first(environment);
    EXPECT_EQ(first.instance.start(url), Start::first);
    runEventLoop(20ms);
    EXPECT_THAT(first.heard, IsEmpty());
}

TEST_F(SingleInstances, aSecondStartHandsItsUrlOver) {
    Program first(environment);
    Program second(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    EXPECT_EQ(second.instance.start(url), Start::handedOver);
    EXPECT_THAT(first.heard, ElementsAre(url));
    EXPECT_THAT(second.heard, IsEmpty());
}

TEST_F(SingleInstances, aSecondStartWithoutAUrlAsksForTheWindow) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    EXPECT_EQ(Program(environment).instance.start(), Start::handedOver);
    EXPECT_THAT(first.heard, ElementsAre("raise"));
}

TEST_F(SingleInstances, everyLaterStartIsHeardInItsOrder) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    for (const char* each : {"a://1", "a://2", "a://ü"})
        EXPECT_EQ(Program(environment).instance.start(each), Start::handedOver);
    EXPECT_THAT(first.heard, ElementsAre("a://1", "a://2", "a://ü"));
}

TEST_F(SingleInstances, anEmptyUrlIsAUrl) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    EXPECT_EQ(Program(environment).instance.start(""), Start::handedOver);
    EXPECT_THAT(first.heard, ElementsAre(""));
}

TEST_F(SingleInstances, aUrlOfAMebibyteArrivesAndALongerOneIsRefused) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    const std::string longest(1048576, 'x');
    EXPECT_EQ(Program(environment).instance.start(longest), Start::handedOver);
    EXPECT_EQ(Program(environment).instance.start(longest + "x"), Start::urlTooLong);
    runEventLoop(20ms);
    ASSERT_EQ(first.heard.size(), 1U);
    EXPECT_EQ(first.heard[0], longest);
}

TEST_F(SingleInstances, aUrlTooLongToBeHandedOverIsNoHindranceForTheFirst) {
    EXPECT_EQ(Program(environment).instance.start(std::string(1048577, 'x')), Start::first);
}

TEST_F(SingleInstances, foreignBytesEndTheirConnectionAndNothingElse) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    const auto bytes = [](const char* text, qsizetype size) { return QByteArray(text, size); };
    for (const QByteArray& foreign :
         {bytes("x", 1), bytes("GET / HTTP/1.1\r\n\r\n", 18), bytes("ZUVA", 4), bytes("ZUVO\0\0\0\0", 8),
          bytes("ZUVO\0\x10\0\2", 8), bytes("ZUVO\xff\xff\xff\xff", 8), bytes("ZUVO\0\0\0\1Q", 9),
          bytes("ZUVO\0\0\0\2Rx", 10), bytes("ZUVO\0\0\0\2U\xff", 10), bytes("ZUVO\0\0\0\4U\xed\xa0\x80", 12)})
        EXPECT_TRUE(isCutOff(first.instance, foreign)) << foreign.toHex().toStdString();
    EXPECT_THAT(first.heard, IsEmpty());
    EXPECT_EQ(Program(environment).instance.start(url), Start::handedOver);
    EXPECT_THAT(first.heard, ElementsAre(url));
}

TEST_F(SingleInstances, aConnectionThatEndsInTheMiddleIsForgotten) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    for (const char* part : {"", "ZU", "ZUVO", "ZUVO\1"}) {
        QLocalSocket socket;
        socket.connectToServer(QString::fromStdString(first.instance.socketPath()));
        socket.write(part);
        socket.flush();
        runEventLoop(5ms);
        socket.abort();
    }
    runEventLoop(20ms);
    EXPECT_THAT(first.heard, IsEmpty());
    EXPECT_EQ(Program(environment).instance.start(), Start::handedOver);
}

TEST_F(SingleInstances, aMessageMayComeByteByByteAndIsAnswered) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(first.instance.socketPath()));
    for (const char byte : std::string("ZUVO\0\0\0\4Ua:b", 12)) {
        EXPECT_THAT(first.heard, IsEmpty());
        socket.write(&byte, 1);
        socket.flush();
        runEventLoop(2ms);
    }
    EXPECT_TRUE(waitUntil([&] { return !first.heard.empty(); }));
    EXPECT_THAT(first.heard, ElementsAre("a:b"));
    EXPECT_TRUE(waitUntil([&] { return socket.bytesAvailable() > 0; }));
    EXPECT_EQ(socket.readAll(), "+");
}

TEST_F(SingleInstances, theFirstMayEndWhileItHearsOfAnother) {
    auto first = std::make_unique<SingleInstance>(environment);
    ASSERT_EQ(first->start(), Start::first);
    QObject::connect(first.get(), &SingleInstance::raiseRequested, [&] { first.reset(); });
    EXPECT_EQ(Program(environment).instance.start(), Start::handedOver);
    EXPECT_EQ(first, nullptr);
}

TEST_F(SingleInstances, onceTheFirstHasEndedTheNextIsFirst) {
    EXPECT_EQ(Program(environment).instance.start(), Start::first);
    EXPECT_EQ(Program(environment).instance.start(), Start::first);
    EXPECT_TRUE(std::filesystem::is_empty(*environment.temporaryFolder()));
}

TEST_F(SingleInstances, aStartThatWasHandedOverLeavesTheFirstWhereItIs) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    EXPECT_EQ(Program(environment).instance.start(), Start::handedOver);
    EXPECT_EQ(Program(environment).instance.start(), Start::handedOver);
}

TEST_F(SingleInstances, twoHomesHaveAFirstEachAndALinkedHomeIsTheSame) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    auto linked = environment;
    linked.home = folder / "link";
    std::filesystem::create_directory_symlink(environment.home, linked.home);
    EXPECT_EQ(Program(linked).instance.start(), Start::handedOver);
    auto other = environment;
    other.home = folder.makeFolder("other home");
    EXPECT_EQ(Program(other).instance.start(), Start::first);
}

TEST_F(SingleInstances, nobodyElseMayOpenTheSocketWhoseNameSaysWhose) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    struct stat status {};
    ASSERT_EQ(stat(first.instance.socketPath().c_str(), &status), 0);
    EXPECT_TRUE(S_ISSOCK(status.st_mode));
    EXPECT_EQ(status.st_mode & 077U, 0U);
    EXPECT_THAT(first.instance.socketPath(),
                testing::StartsWith(*environment.temporaryFolder() + "manager-" + std::to_string(geteuid()) + "-"));
}

TEST_F(SingleInstances, anotherUsersSocketIsToldNothing) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give a socket away";
    const auto path = SingleInstance(environment).socketPath();
    QLocalServer stranger;
    ASSERT_TRUE(stranger.listen(QString::fromStdString(path)));
    constexpr uid_t somebody = 12345;
    ASSERT_EQ(chown(path.c_str(), somebody, somebody), 0);
    EXPECT_EQ(Program(environment).instance.start(url), Start::first);
    runEventLoop(20ms);
    EXPECT_FALSE(stranger.hasPendingConnections());
}

TEST_F(SingleInstances, aPathTooLongForASocketGivesWayToAShorterFolder) {
    auto deep = environment;
    deep.systemTemporaryFolder = folder.makeFolder(std::string(100, 'd'));
    const auto shortFolder = folder.makeFolder("s");
    Program first(deep, shortFolder);
    EXPECT_EQ(first.instance.start(), Start::first);
    EXPECT_THAT(first.instance.socketPath(), testing::StartsWith(shortFolder + "/"));
    EXPECT_EQ(Program(deep, shortFolder).instance.start(url), Start::handedOver);
    EXPECT_THAT(first.heard, ElementsAre(url));
}

TEST_F(SingleInstances, withoutAPlaceForTheSocketItIsUnavailableInWords) {
    auto deep = environment;
    deep.systemTemporaryFolder = folder.makeFolder(std::string(100, 'd'));
    Program tooLong(deep, deep.systemTemporaryFolder);
    EXPECT_EQ(tooLong.instance.start(url), Start::unavailable);
    EXPECT_THAT(tooLong.instance.refusal(), HasSubstr(deep.systemTemporaryFolder + " cannot be made"));
    folder.write("zuvo-" + std::to_string(geteuid()), "a file where the folder should be");
    Program noFolder(environment);
    EXPECT_EQ(noFolder.instance.start(), Start::unavailable);
    EXPECT_THAT(noFolder.instance.refusal(), HasSubstr(folder.path() + " cannot be made"));
}

TEST_F(SingleInstances, whateverLiesWhereTheSocketBelongsIsReplaced) {
    const auto path = SingleInstance(environment).socketPath();
    std::ofstream(path) << "no socket";
    Program first(environment);
    EXPECT_EQ(first.instance.start(), Start::first);
    EXPECT_EQ(Program(environment).instance.start(), Start::handedOver);
}

TEST_F(SingleInstances, aPlaceThatCannotBeListenedAtIsUnavailableAndLetGo) {
    const auto path = SingleInstance(environment).socketPath();
    std::filesystem::create_directories(path + "/full");
    Program start(environment);
    EXPECT_EQ(start.instance.start(), Start::unavailable);
    EXPECT_THAT(start.instance.refusal(), HasSubstr("Cannot listen at " + path));
    std::filesystem::remove_all(path);
    EXPECT_EQ(Program(environment).instance.start(), Start::first);
}

TEST_F(SingleInstances, aDeadProgramsLockDoesNotHoldEvenIfItsNumberLives) {
    const auto lockPath = SingleInstance(environment).socketPath() + ".lock";
    QLockFile lock(QString::fromStdString(lockPath));
    ASSERT_TRUE(lock.lock());
    std::filesystem::copy_file(lockPath, folder / "copy");
    lock.unlock();
    std::filesystem::rename(folder / "copy", lockPath); // names this process, which lives and does not hold it
    EXPECT_EQ(Program(environment).instance.start({}, 50ms), Start::first);
}

TEST_F(SingleInstances, aLockThatIsHeldBySomebodySilentIsNoAnswer) {
    QLockFile lock(QString::fromStdString(SingleInstance(environment).socketPath() + ".lock"));
    ASSERT_TRUE(lock.lock());
    EXPECT_EQ(Program(environment).instance.start(url, 50ms), Start::noAnswer);
    lock.unlock();
    EXPECT_EQ(Program(environment).instance.start(url), Start::first);
}

TEST_F(SingleInstances, anotherProgramHandsItsUrlOverAndEnds) {
    Program first(environment);
    ASSERT_EQ(first.instance.start(), Start::first);
    const std::string token(100'000, 't');
    OtherProgram second(environment, {QString::fromStdString(url + token)});
    EXPECT_EQ(second.line(), "handedOver");
    EXPECT_EQ(second.finish(), 0);
    EXPECT_THAT(first.heard, ElementsAre(url + token));
}

TEST_F(SingleInstances, anotherProgramHearsOfThisOne) {
    OtherProgram first(environment);
    ASSERT_EQ(first.line(), "first");
    EXPECT_EQ(Program(environment).instance.start(url), Start::handedOver);
    EXPECT_EQ(first.line(), "url " + url);
    EXPECT_EQ(Program(environment).instance.start(), Start::handedOver);
    EXPECT_EQ(first.line(), "raise");
}

TEST_F(SingleInstances, theSocketOfAKilledProgramIsTakenOver) {
    OtherProgram first(environment);
    ASSERT_EQ(first.line(), "first");
    first.signal(SIGKILL);
    Program next(environment);
    ASSERT_TRUE(std::filesystem::exists(next.instance.socketPath()));
    EXPECT_EQ(next.instance.start(url), Start::first);
    EXPECT_EQ(Program(environment).instance.start(url), Start::handedOver);
    EXPECT_THAT(next.heard, ElementsAre(url));
}

TEST_F(SingleInstances, aFirstThatHangsIsGivenUpAndStaysTheFirst) {
    OtherProgram first(environment);
    ASSERT_EQ(first.line(), "first");
    first.signal(SIGSTOP);
    EXPECT_EQ(Program(environment).instance.start(url, 200ms), Start::noAnswer);
    first.signal(SIGCONT);
    EXPECT_EQ(Program(environment).instance.start(), Start::handedOver);
}

TEST_F(SingleInstances, ofManyStartsAtOnceOneIsTheFirstAndHearsOfAllOthers) {
    constexpr std::size_t count = 8;
    std::vector<std::unique_ptr<OtherProgram>> programs;
    for (std::size_t number = 0; number < count; ++number)
        programs.push_back(std::make_unique<OtherProgram>(environment, QStringList(QStringLiteral("a:b"))));
    OtherProgram* first = nullptr;
    std::size_t handedOver = 0;
    for (const auto& program : programs) {
        const auto line = program->line();
        handedOver += line == "handedOver" ? 1U : 0U;
        if (line == "first") {
            EXPECT_EQ(first, nullptr);
            first = program.get();
        }
    }
    EXPECT_EQ(handedOver, count - 1);
    ASSERT_NE(first, nullptr);
    for (std::size_t number = 0; number < count - 1; ++number)
        EXPECT_EQ(first->line(), "url a:b");
}
