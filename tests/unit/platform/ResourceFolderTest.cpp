#include "platform/ResourceFolder.h"

#include "fakes/TemporaryFolder.h"

#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class Resources : public testing::Test {
protected:
    std::optional<std::string> of(const std::string& applicationFolder) const {
        return resourceFolder(disk / applicationFolder, {disk / "sources/build/dev", disk / "sources/resources"});
    }

    TemporaryFolder disk;
};

} // namespace

TEST_F(Resources, aProgramInItsBuildFolderTakesThoseOfTheSources) {
    disk.makeFolder("sources/build/dev/src/app");
    disk.makeFolder("sources/resources");
    EXPECT_EQ(of("sources/build/dev/src/app"), disk / "sources/resources");
}

#ifndef __APPLE__
TEST_F(Resources, anInstalledProgramTakesThoseOfItsInstallation) {
    disk.makeFolder("sources/resources");
    disk.makeFolder("usr/bin");
    disk.makeFolder("usr/share/zuvo-manager");
    EXPECT_EQ(of("usr/bin"), disk / "usr/share/zuvo-manager");
}
#endif

TEST_F(Resources, aProgramElsewhereHasNone) {
    disk.makeFolder("sources/resources");
    disk.makeFolder("downloads/bin");
    EXPECT_EQ(of("downloads/bin"), std::nullopt);
    disk.makeFolder("sources/build/dev-copy/src/app"); // a name alone that begins like the build folder's
    EXPECT_EQ(of("sources/build/dev-copy/src/app"), std::nullopt);
}

TEST_F(Resources, sourcesThatAreGoneGiveNone) {
    disk.makeFolder("sources/build/dev/src/app");
    EXPECT_EQ(of("sources/build/dev/src/app"), std::nullopt);
}

TEST_F(Resources, aFileIsNoResourceFolder) {
    disk.makeFolder("sources/build/dev/src/app");
    disk.write("sources/resources", "");
    EXPECT_EQ(of("sources/build/dev/src/app"), std::nullopt);
}

TEST(OwnResources, areFoundFromThisBuild) {
    const auto build = ownBuildTree();
    EXPECT_EQ(resourceFolder(build.folder + "/tests"), build.resources);
}
