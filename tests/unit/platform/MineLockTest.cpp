#include "platform/MineLock.h"

#include "fakes/TemporaryFolder.h"

#include <QCoreApplication>
#include <QProcess>
#include <filesystem>
#include <gmock/gmock.h>
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

    /// The one file that a lock leaves.
    [[nodiscard]] std::string lockFile() const {
        { const MineLock lock(environment); }
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(*environment.temporaryFolder()))
            files.push_back(entry.path());
        EXPECT_EQ(files.size(), 1U);
        return files.at(0);
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
    EXPECT_EQ(second.refusal(),
              "Another mine is running under " + environment.home + ". Wait for it to end, then try again.");
    EXPECT_TRUE(first.isHeld());
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
    EXPECT_FALSE(MineLock(environment).isHeld());
    holder.kill();
    EXPECT_TRUE(MineLock(environment).isHeld());
}

TEST_F(MineLocks, withoutAPrivateFolderThereIsNoLock) {
    folder.write("zuvo-" + std::to_string(geteuid()), "a file where the folder should be");
    const MineLock lock(environment);
    EXPECT_FALSE(lock.isHeld());
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
    std::ofstream(lockFile()) << "half of what was to be wri";
    EXPECT_TRUE(MineLock(environment).isHeld());
}

TEST_F(MineLocks, aLockThatCannotBeMadeIsNotTakenForAnotherMine) {
    const auto file = lockFile();
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    const MineLock lock(environment);
    EXPECT_FALSE(lock.isHeld());
    EXPECT_EQ(lock.refusal(), "No lock could be made at " + file);
}
