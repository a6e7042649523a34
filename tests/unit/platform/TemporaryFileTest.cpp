#include "platform/TemporaryFile.h"

#include "fakes/TemporaryFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class TemporaryFiles : public testing::Test {
protected:
    TemporaryFiles() { environment.systemTemporaryFolder = folder.path(); }

    [[nodiscard]] std::string in(const std::string& name) const { return *environment.temporaryFolder() + name; }
    [[nodiscard]] bool isThere(const std::string& name) const { return std::filesystem::exists(in(name)); }
    void write(const std::string& name) const { std::ofstream(in(name)) << "x"; }

    TemporaryFolder folder;
    Environment environment;
};

} // namespace

TEST_F(TemporaryFiles, theFileIsEmptyAndThisUsersAloneAndGoesWithTheObject) {
    const auto mask = umask(0);
    {
        const TemporaryFile file(environment, "zuvo_x.txt");
        ASSERT_TRUE(file.isMade());
        EXPECT_EQ(file.path(), in("zuvo_x.txt"));
        struct stat status {};
        ASSERT_EQ(stat(file.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFREG | S_IRUSR | S_IWUSR));
        EXPECT_EQ(status.st_size, 0);
    }
    umask(mask);
    EXPECT_FALSE(isThere("zuvo_x.txt"));
}

TEST_F(TemporaryFiles, aNameThatIsTakenIsNotWrittenTo) {
    write("zuvo_x.txt");
    const TemporaryFile file(environment, "zuvo_x.txt");
    EXPECT_FALSE(file.isMade());
}

TEST_F(TemporaryFiles, withoutTheFolderThereIsNoFile) {
    folder.write("zuvo-" + std::to_string(geteuid()), "a file where the folder should be");
    EXPECT_FALSE(TemporaryFile(environment, "zuvo_x.txt").isMade());
}

TEST_F(TemporaryFiles, whatAKilledProgramHasLeftIsRemovedAndNothingElse) {
    const TemporaryFile inUse(environment, "zuvo_pcm_1.raw");
    write("zuvo_pcm_2.raw");
    write("zuvo_stderr_3.txt");
    write("manager.socket");
    std::filesystem::create_directory(in("zuvo_folder"));
    std::filesystem::create_symlink(in("manager.socket"), in("zuvo_link"));
    removeAbandonedTemporaryFiles(*environment.temporaryFolder());
    EXPECT_TRUE(isThere("zuvo_pcm_1.raw"));
    EXPECT_FALSE(isThere("zuvo_pcm_2.raw"));
    EXPECT_FALSE(isThere("zuvo_stderr_3.txt"));
    EXPECT_TRUE(isThere("manager.socket"));
    EXPECT_TRUE(isThere("zuvo_folder"));
    EXPECT_TRUE(isThere("zuvo_link"));
}

TEST_F(TemporaryFiles, anEndWithoutDestructorsCanRemoveThemAll) {
    const TemporaryFile first(environment, "zuvo_1.txt");
    const TemporaryFile second(environment, "zuvo_2.txt");
    { const TemporaryFile gone(environment, "zuvo_3.txt"); }
    write("zuvo_4.txt");
    TemporaryFile::removeAll();
    EXPECT_FALSE(isThere("zuvo_1.txt"));
    EXPECT_FALSE(isThere("zuvo_2.txt"));
    EXPECT_TRUE(isThere("zuvo_4.txt")) << "another program's";
}
