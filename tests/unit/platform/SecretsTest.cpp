// What no child and no crash gets: the keys and the token.

#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"
#include "platform/ChildEnvironment.h"
#include "platform/Environment.h"
#include "platform/Processes.h"
#include "platform/SoundDecoding.h"

#include <QCoreApplication>
#include <QProcess>
#include <algorithm>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* openaiKey = "made-up-key-of-the-first";
constexpr const char* anthropicKey = "made-up-key-of-the-second";

/// Both keys and a harmless variable in this program's environment, for one test.
class Secrets : public testing::Test {
protected:
    Secrets() {
        qputenv("OPENAI_API_KEY", openaiKey);
        qputenv("ANTHROPIC_API_KEY", anthropicKey);
        qputenv("ZUVO_TEST_HARMLESS", "harmless");
    }
    ~Secrets() override {
        for (const char* name : {"OPENAI_API_KEY", "ANTHROPIC_API_KEY", "ZUVO_TEST_HARMLESS"})
            qunsetenv(name);
    }

    static void thenOnlyTheKeysAreMissing(const std::string& variables) {
        EXPECT_THAT(variables, HasSubstr("ZUVO_TEST_HARMLESS=harmless"));
        EXPECT_THAT(variables, Not(HasSubstr("made-up-key")));
        EXPECT_THAT(variables, Not(HasSubstr("_API_KEY")));
    }

    /// What a second start of this program prints that has withdrawn its keys and turned core dumps off.
    static std::string secondStart(const char* wish, const char* argument) {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(),
                      {QString::fromLatin1(wish), QString::fromLatin1(argument)});
        EXPECT_TRUE(process.waitForFinished());
        return process.readAllStandardOutput().toStdString();
    }

    /// Bytes of the largest core file that the tests' own surroundings allow.
    static rlim_t greatestLimit() {
        rlimit limit{};
        getrlimit(RLIMIT_CORE, &limit);
        return limit.rlim_max;
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(Secrets, aChildGetsTheProgramsEnvironmentWithoutTheKeys) {
    ChildProcessRunner runner;
    ProcessRequest request;
    request.program = "/usr/bin/env";
    request.keepsOutput = true;
    request.variables = {{"PYTHONPATH", "/modules"}};
    const auto outcome = runToEnd(runner.run(std::move(request)));
    thenOnlyTheKeysAreMissing(outcome.standardOutput);
    EXPECT_THAT(outcome.standardOutput, HasSubstr("PYTHONPATH=/modules"));
}

TEST_F(Secrets, theDecoderOfSoundGetsThemNeither) {
    const auto program = folder.write("decoder", "#!/bin/sh\n/usr/bin/env\n");
    ASSERT_EQ(chmod(program.c_str(), S_IRWXU), 0);
    const std::string footage = "/footage.wav";
    SoundDecoding decoding(program);
    decoding.start(footage, 0.0, {});
    std::string variables;
    EXPECT_TRUE(waitUntil([&] {
        variables += decoding.take(100'000).toStdString();
        return variables.find("ZUVO_TEST_HARMLESS") != std::string::npos;
    }));
    runEventLoop(std::chrono::milliseconds(50));
    variables += decoding.take(100'000).toStdString();
    thenOnlyTheKeysAreMissing(variables);
}

TEST_F(Secrets, withdrawnKeysAreGoneFromTheProgramsEnvironmentButNotForItself) {
    EXPECT_EQ(secondStart("--withdrawn-keys", "-"),
              "OPENAI_API_KEY: not in the environment, made-up-key-of-the-first\n"
              "ANTHROPIC_API_KEY: not in the environment, made-up-key-of-the-second\n"
              "ZUVO_TEST_HARMLESS: harmless, harmless\n"
              "ZUVO_TEST_MISSING: not in the environment, unknown\n");
}

TEST_F(Secrets, aKeyThatIsSetAndEmptyStaysSoWhenItIsWithdrawn) {
    qputenv("OPENAI_API_KEY", "");
    EXPECT_THAT(secondStart("--withdrawn-keys", "-"), HasSubstr("OPENAI_API_KEY: not in the environment, \n"));
}

#ifdef Q_OS_LINUX
TEST_F(Secrets, aProgramThatNobodyLooksAtDumpsNoCoreAndCannotBeRead) {
    EXPECT_EQ(secondStart("--core-dumps", "nobody"), "limit 0, dumpable 0\n");
}

TEST_F(Secrets, aProgramThatUsesTheDesktopsPortalsDumpsNoCoreAndCanBeLookedAt) {
    EXPECT_EQ(secondStart("--core-dumps", "desktopPortals"),
              "limit " + std::to_string(std::min<rlim_t>(1, greatestLimit())) + ", dumpable 1\n");
}
#endif

TEST_F(Secrets, aChildThatIsToldToMakesPrivateFilesWhateverTheMask) {
    const auto mask = umask(0);
    ChildProcessRunner runner;
    for (const bool isPrivate : {true, false}) {
        ProcessRequest request;
        request.program = "/bin/sh";
        request.arguments = {"-c", "umask", "sh"};
        request.keepsOutput = true;
        request.makesPrivateFiles = isPrivate;
        EXPECT_EQ(runToEnd(runner.run(std::move(request))).standardOutput, isPrivate ? "0077\n" : "0000\n");
    }
    umask(mask);
}
