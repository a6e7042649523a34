#include "exporters/MediaIndex.h"

#include "base/Paths.h"
#include "support/StoryRecords.h"

#include <gtest/gtest.h>

#include <random>

namespace zuvo::exporters {
namespace {

std::vector<MediaFileInfo> filesNamed(const std::vector<std::string>& names) {
    std::vector<MediaFileInfo> files;
    for (const auto& name : names)
        files.push_back(tests::footage(name, 1.0, tests::Streams::sound));
    return files;
}

TEST(MediaByName, isTheFirstOfExactlyThisName) {
    const auto files = filesNamed({"a.mov", "b.mov", "b.mov", "B.mov"});
    const MediaIndex index(files);
    EXPECT_EQ(index.named("b.mov"), 1U);
    EXPECT_EQ(index.named("B.mov"), 3U);
    EXPECT_EQ(index.named("b"), std::nullopt);
    EXPECT_EQ(index.named(""), std::nullopt);
}

TEST(MediaNamedAlike, disregardsBothExtensions) {
    const auto files = filesNamed({"a.tar.gz", "b.mov", "c"});
    const MediaIndex index(files);
    EXPECT_EQ(index.namedAlike("b.mov"), 1U);
    EXPECT_EQ(index.namedAlike("b.wav"), 1U);
    EXPECT_EQ(index.namedAlike("b"), 1U);
    EXPECT_EQ(index.namedAlike("c.aif"), 2U);
    EXPECT_EQ(index.namedAlike("a.tar"), std::nullopt); // "a" and "a.tar"
    EXPECT_EQ(index.namedAlike("a.tar.bz2"), 0U);
    EXPECT_EQ(index.namedAlike("B.mov"), std::nullopt);
}

TEST(MediaNamedAlike, isTheFirstForWhichEitherTestHolds) {
    const auto files = filesNamed({"b.wav", "b.mov"});
    EXPECT_EQ(MediaIndex(files).namedAlike("b.mov"), 0U);
}

TEST(MediaNamedAlikeOrContaining, findsAPartOfAName) {
    const auto files = filesNamed({"interview_1.mov", "interview_10.mov"});
    const MediaIndex index(files);
    EXPECT_EQ(index.namedAlikeOrContaining("view_1"), 0U);
    EXPECT_EQ(index.namedAlikeOrContaining("_10"), 1U);
    EXPECT_EQ(index.namedAlikeOrContaining("mov"), 0U);
    EXPECT_EQ(index.namedAlikeOrContaining("_2"), std::nullopt);
    EXPECT_EQ(index.namedAlikeOrContaining("the interview_1.mov"), std::nullopt);
}

TEST(MediaNamedAlikeOrContaining, aPartOfAnEarlierNameComesBeforeAWholeLaterOne) {
    const auto files = filesNamed({"take_12.mov", "take_1.mov"});
    EXPECT_EQ(MediaIndex(files).namedAlikeOrContaining("take_1"), 0U);
}

TEST(MediaNamedAlikeOrContaining, everyNameContainsAnEmptyOne) {
    const auto files = filesNamed({"a.mov"});
    EXPECT_EQ(MediaIndex(files).namedAlikeOrContaining(""), 0U);
}

TEST(MediaIndex, ofNoFilesFindsNone) {
    const std::vector<MediaFileInfo> files;
    const MediaIndex index(files);
    EXPECT_EQ(index.named(""), std::nullopt);
    EXPECT_EQ(index.namedAlike(""), std::nullopt);
    EXPECT_EQ(index.namedAlikeOrContaining(""), std::nullopt);
}

/// The first file for which the test holds, by asking every one.
template <typename Holds>
std::optional<std::size_t> first(const std::vector<MediaFileInfo>& files, Holds holds) {
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (holds(files[i].filename))
            return i;
    }
    return std::nullopt;
}

TEST(MediaIndex, findsWhatAskingEveryFileFinds) {
    std::mt19937 random(4);
    const auto anyName = [&random] {
        std::string name;
        for (std::size_t length = random() % 5; length > 0; --length)
            name += "ab./"[random() % 4];
        return name;
    };
    for (int run = 0; run < 20'000; ++run) {
        const auto files = filesNamed({anyName(), anyName(), anyName(), anyName(), anyName()});
        const auto name = anyName();
        const MediaIndex index(files);
        const auto isNamed = [&](const std::string& filename) { return filename == name; };
        const auto isAlike = [&](const std::string& filename) {
            return filename == name || withoutExtension(filename) == withoutExtension(name);
        };
        const auto isAlikeOrContains = [&](const std::string& filename) {
            return isAlike(filename) || filename.find(name) != std::string::npos;
        };
        ASSERT_EQ(index.named(name), first(files, isNamed)) << name;
        ASSERT_EQ(index.namedAlike(name), first(files, isAlike)) << name;
        ASSERT_EQ(index.namedAlikeOrContaining(name), first(files, isAlikeOrContains)) << name;
    }
}

} // namespace
} // namespace zuvo::exporters
