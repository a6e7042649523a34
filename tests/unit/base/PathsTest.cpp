#include "base/Paths.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

TEST(LastPathComponent, isWhatFollowsTheLastSlash) {
    EXPECT_EQ(lastPathComponent("/a/b.wav"), "b.wav");
    EXPECT_EQ(lastPathComponent("b.wav"), "b.wav");
    EXPECT_EQ(lastPathComponent("/a b/Ünïcode 🔊.wav"), "Ünïcode 🔊.wav");
}

TEST(LastPathComponent, passesOverSlashesAtTheEnd) {
    EXPECT_EQ(lastPathComponent("/a/b/"), "b");
    EXPECT_EQ(lastPathComponent("/a/b///"), "b");
}

TEST(LastPathComponent, ofTheRootIsTheRoot) {
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent("///"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
}

TEST(PathExtension, isWhatFollowsTheLastPoint) {
    EXPECT_EQ(pathExtension("/a/b.tar.gz"), "gz");
    EXPECT_EQ(pathExtension("b.WAV"), "WAV");
}

TEST(PathExtension, isEmptyIfThePointStandsFirstOrLast) {
    EXPECT_EQ(pathExtension("/a/.wav"), "");
    EXPECT_EQ(pathExtension("/a/a."), "");
    EXPECT_EQ(pathExtension("."), "");
}

TEST(PathExtension, isEmptyWithoutAPointInTheLastComponent) {
    EXPECT_EQ(pathExtension("/a.b/c"), "");
    EXPECT_EQ(pathExtension(""), "");
    EXPECT_EQ(pathExtension("/"), "");
}

TEST(WithoutExtension, keepsWhatStandsBeforeTheLastPoint) {
    EXPECT_EQ(withoutExtension("/a/b.tar.gz"), "/a/b.tar");
    EXPECT_EQ(withoutExtension("Renée.MOV"), "Renée");
    EXPECT_EQ(withoutExtension("/a.b/c.wav//"), "/a.b/c");
}

TEST(WithoutExtension, isTheWholePathIfThereIsNone) {
    for (const char* path : {"", "source", "/a.b/c", "/a/.wav", "/a/a.", ".", "/", "a/", "a.b/c/"})
        EXPECT_EQ(withoutExtension(path), path);
}

} // namespace
} // namespace zuvo
