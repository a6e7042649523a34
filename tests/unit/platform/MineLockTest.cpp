#include "platform/MineLock.h"

#include "fakes/TemporaryFolder.h"

#include <QCoreApplication>
#include <QProcess>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;

namespace {

class MineLocks : public testing::Test {
protected:
    MineLocks() {
        environment.systemTemporaryFolder = folder.path();
        environment.home = folder.makeFolder("home");
    }

    [[nodiscard]] std::string lockFile() const { return environment.cacheFolder() + "/mine.lock"; }

    [[nodiscard]] std::string wordsInTheFile() const {
        std::ifstream file(lockFile(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    [[nodiscard]] static mode_t modeOf(const std::string& path) {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
        constexpr mode_t permissions = 07777;
        return status.st_mode & permissions;
    }

    TemporaryFolder folder;
    Environment environment;
};

/// A second program that holds the lock until it is killed.
class Holder {
public:
    explicit Holder(const Environment& environment) {
        m_process.start(QCoreApplication::applicationFilePath(),
                        {QStringLiteral("--hold-lock"), QString::fromStdString(environment.systemTemporaryFolder),
                         QString::fromStdString(environment.home)});
        EXPECT_TRUE(m_process.waitForReadyRead());
        EXPECT_EQ(m_process.readAllStandardOutput().toStdString(), "held\n");
    }
    ~Holder() { kill(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    [[nodiscard]] std::string process() const { return std::to_string(m_process.processId()); }

    void kill() {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

} // namespace

TEST_F(MineLocks, theFirstMineHoldsIt) {
    const MineLock lock(environment);
    EXPECT_TRUE(lock.isHeld());
    EXPECT_EQ(lock.refusal(), "");
}

TEST_F(MineLocks, aSecondMineUnderTheSameHomeIsRefusedInWords) {
    const MineLock first(environment);
    const MineLock second(environment);
    EXPECT_FALSE(second.isHeld());
    EXPECT_TRUE(second.isTaken());
    EXPECT_EQ(second.refusal(),
              "Another mine is running (zuvo_platform_tests, process " + std::to_string(getpid()) + ")");
    EXPECT_TRUE(first.isHeld());
    EXPECT_FALSE(first.isTaken());
}

TEST_F(MineLocks, itIsLetGoAtDestruction) {
    { const MineLock lock(environment); }
    EXPECT_TRUE(MineLock(environment).isHeld());
}

TEST_F(MineLocks, aRefusedMineDoesNotLetGoOfTheOther) {
    const MineLock first(environment);
    { const MineLock second(environment); }
    EXPECT_FALSE(MineLock(environment).isHeld());
}

TEST_F(MineLocks, minesUnderTwoHomesDoNotMeet) {
    const MineLock first(environment);
    auto other = environment;
    other.home = folder.makeFolder("other home");
    EXPECT_TRUE(MineLock(other).isHeld());
}

TEST_F(MineLocks, aHomeReachedByALinkIsTheSameHome) {
    const MineLock first(environment);
    auto other = environment;
    other.home = folder / "link";
    std::filesystem::create_directory_symlink(environment.home, other.home);
    EXPECT_FALSE(MineLock(other).isHeld());
}

TEST_F(MineLocks, anotherProgramsMineIsRefusedUntilThatProgramDies) {
    Holder holder(environment);
    EXPECT_EQ(MineLock(environment).refusal(),
              "Another mine is running (zuvo_platform_tests, process " + holder.process() + ")");
    holder.kill();
    EXPECT_TRUE(MineLock(environment).isHeld());
}

TEST_F(MineLocks, withoutAPrivateFolderThereIsNoLock) {
    folder.write("zuvo-" + std::to_string(geteuid()), "a file where the folder should be");
    const MineLock lock(environment);
    EXPECT_FALSE(lock.isHeld());
    EXPECT_FALSE(lock.isTaken());
    EXPECT_THAT(lock.refusal(), HasSubstr(folder.path() + " cannot be made or is not this user's own"));
}

TEST_F(MineLocks, aChildThatOutlivesItsProgramDoesNotHoldIt) {
    QProcess child;
    {
        const MineLock lock(environment);
        child.start(QStringLiteral("/bin/sleep"), {QStringLiteral("300")});
        ASSERT_TRUE(child.waitForStarted());
    }
    EXPECT_TRUE(MineLock(environment).isHeld());
    child.kill();
    child.waitForFinished();
}

TEST_F(MineLocks, whatLiesInTheFileOfTheLockDoesNotMatter) {
    { const MineLock lock(environment); }
    std::ofstream(lockFile()) << "half of what was to be wri";
    EXPECT_TRUE(MineLock(environment).isHeld());
}

TEST_F(MineLocks, onlyAHolderOfTheRightFormIsShown) {
    const MineLock lock(environment);
    const std::string escape = "\x1b";
    for (const std::string& words :
         {std::string(), std::string("zuvo"), std::string("zuvo 12"), std::string("zuvo x\n"), std::string(" 12\n"),
          std::string("zuvo \n"), std::string("zu vo 12\n"), escape + "[31mzuvo 12\n", std::string(100, 'z') + " 12\n",
          std::string("<b>zuvo</b> 12\n")}) {
        std::ofstream(lockFile(), std::ios::binary) << words;
        EXPECT_EQ(MineLock(environment).refusal(), "Another mine is running") << words;
    }
    std::ofstream(lockFile(), std::ios::binary) << "ZuvoManager 12\n";
    EXPECT_EQ(MineLock(environment).refusal(), "Another mine is running (ZuvoManager, process 12)");
}

TEST_F(MineLocks, itIsAFileInTheCacheFolderForThisUserAlone) {
    const auto mask = umask(0);
    {
        const MineLock lock(environment);
        EXPECT_EQ(wordsInTheFile(), "zuvo_platform_tests " + std::to_string(getpid()) + "\n");
    }
    umask(mask);
    EXPECT_EQ(wordsInTheFile(), "") << "a lock that nobody holds names nobody";
    EXPECT_EQ(modeOf(lockFile()), 0600U);
    EXPECT_EQ(modeOf(environment.cacheFolder()), 0700U);
}

TEST_F(MineLocks, twoFoldersForTemporaryFilesHaveOneLock) {
    const MineLock first(environment);
    auto other = environment;
    other.systemTemporaryFolder = folder.makeFolder("other temporary");
    EXPECT_FALSE(MineLock(other).isHeld());
}

TEST_F(MineLocks, aLockFileThatIsRemovedWhileItIsOpenedLocksNothing) {
    const MineLock first(environment);
    std::filesystem::remove(lockFile());
    const MineLock second(environment);
    EXPECT_TRUE(second.isHeld());
    EXPECT_FALSE(MineLock(environment).isHeld()) << "the second holds the file that is there";
}

TEST_F(MineLocks, oneProgramHasOneLockUntilTheLastLetsItGo) {
    auto first = MineLock::ofThisProgram(environment);
    auto second = MineLock::ofThisProgram(environment);
    EXPECT_TRUE(first->isHeld());
    EXPECT_EQ(first, second);
    first.reset();
    EXPECT_FALSE(MineLock(environment).isHeld());
    second.reset();
    EXPECT_TRUE(MineLock(environment).isHeld());
}

TEST_F(MineLocks, aLockThatThisProgramWasRefusedIsAskedForAgain) {
    Holder holder(environment);
    const auto refused = MineLock::ofThisProgram(environment);
    EXPECT_TRUE(refused->isTaken());
    holder.kill();
    EXPECT_TRUE(MineLock::ofThisProgram(environment)->isHeld());
}

TEST_F(MineLocks, whoeverTakesItRemovesWhatKilledRunsHaveLeft) {
    const auto inCache = folder.write("home/Library/Caches/ZuvoManager/.new-1-2", "half");
    const auto inProject = folder.write("home/Library/Application Support/ZuvoManager/exports/talk/.new-3-4", "half");
    const auto besideToken = folder.write("home/.zuvo/.new-5-6", "half");
    const auto sound = *environment.temporaryFolder() + "zuvo_pcm_X.raw";
    std::ofstream(sound) << "samples";
    const auto project = folder.write("home/Library/Application Support/ZuvoManager/exports/talk/project.json", "{}");
    const auto usersOwn = folder.write("home/.new-7-8", "not below a folder of ours");
    { const MineLock lock(environment); }
    for (const auto& gone : {inCache, inProject, besideToken, sound})
        EXPECT_FALSE(std::filesystem::exists(gone)) << gone;
    for (const auto& kept : {project, usersOwn})
        EXPECT_TRUE(std::filesystem::exists(kept)) << kept;
}

TEST_F(MineLocks, whoIsRefusedRemovesNothing) {
    const MineLock first(environment);
    const auto leftover = folder.write("home/Library/Caches/ZuvoManager/.new-1-2", "half");
    { const MineLock second(environment); }
    EXPECT_TRUE(std::filesystem::exists(leftover));
}

TEST_F(MineLocks, aLockThatCannotBeMadeIsNotTakenForAnotherMine) {
    std::filesystem::create_directories(lockFile());
    const MineLock lock(environment);
    EXPECT_FALSE(lock.isHeld());
    EXPECT_FALSE(lock.isTaken());
    EXPECT_EQ(lock.refusal(), "No lock could be made at " + lockFile() + " (Is a directory)");
}

TEST_F(MineLocks, whereTheCacheFolderCannotBeMadeThereIsNothingToProtect) {
    folder.write("home/Library/Caches", "a file where the folder should be");
    const MineLock lock(environment);
    EXPECT_TRUE(lock.isHeld());
    EXPECT_EQ(lock.refusal(), "");
    EXPECT_EQ(folder.read("home/Library/Caches"), "a file where the folder should be");
}
