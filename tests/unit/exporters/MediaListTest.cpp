#include "exporters/MediaList.h"

#include "support/StoryRecords.h"

#include <gtest/gtest.h>

namespace zuvo {
namespace {

using tests::moment;

ProbeResult probed(const std::string& filename) {
    ProbeResult result;
    result.path = "/where/probing/found/it/" + filename;
    result.filename = filename;
    result.duration = 63.5;
    result.startTimecode = "01:00:00:00";
    result.fps = 29.97;
    result.codec = "aac";
    result.hasVideo = true;
    result.hasAudio = false;
    return result;
}

TEST(GenerateMediaFileInfo, takesProbedFactsByTheNameOfTheFile) {
    const auto list = generateMediaFileInfo({{"/footage/day 1/a.wav"}}, {{"a.wav", probed("a.wav")}}, {});
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].path, "/footage/day 1/a.wav");
    EXPECT_EQ(list[0].filename, "a.wav");
    EXPECT_EQ(list[0].duration, 63.5);
    EXPECT_EQ(list[0].startTimecode, "01:00:00:00");
    EXPECT_EQ(list[0].fps, 29.97);
    EXPECT_EQ(list[0].codec, "aac");
    EXPECT_TRUE(list[0].hasVideo);
    EXPECT_FALSE(list[0].hasAudio);
}

TEST(GenerateMediaFileInfo, aProbedFileWithoutARateCountsAt24) {
    auto probe = probed("a.wav");
    probe.fps = std::nullopt;
    probe.startTimecode = std::nullopt;
    probe.codec = std::nullopt;
    const auto list = generateMediaFileInfo({{"/a.wav"}}, {{"a.wav", probe}}, {});
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].fps, 24.0);
    EXPECT_EQ(list[0].startTimecode, std::nullopt);
    EXPECT_EQ(list[0].codec, std::nullopt);
}

TEST(GenerateMediaFileInfo, aFileThatWasNotProbedIsAnHourOfSound) {
    const auto list = generateMediaFileInfo({{"/footage/a.wav"}}, {{"b.wav", probed("b.wav")}}, {});
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].path, "/footage/a.wav");
    EXPECT_EQ(list[0].filename, "a.wav");
    EXPECT_EQ(list[0].duration, 3600.0);
    EXPECT_EQ(list[0].startTimecode, std::nullopt);
    EXPECT_EQ(list[0].fps, 24.0);
    EXPECT_EQ(list[0].codec, std::nullopt);
    EXPECT_FALSE(list[0].hasVideo);
    EXPECT_TRUE(list[0].hasAudio);
}

TEST(GenerateMediaFileInfo, aFileThatWasNotProbedHasVideoByItsExtension) {
    const std::vector<std::string> paths = {"/a.mov", "/A.MOV", "/a.Mp4", "/.mov", "/a.mxf", "/a.mov.wav", "/mov"};
    const std::vector<bool> expected = {true, true, true, true, false, false, false};
    const auto list = generateMediaFileInfo(paths, {}, {});
    ASSERT_EQ(list.size(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        EXPECT_EQ(list[i].hasVideo, expected[i]) << paths[i];
        EXPECT_TRUE(list[i].hasAudio) << paths[i];
    }
}

TEST(GenerateMediaFileInfo, hasOneEntryForEachPathInOrder) {
    const auto list = generateMediaFileInfo({{"/2/a.wav", "/1/a.wav", "/b.wav"}}, {{"a.wav", probed("a.wav")}}, {});
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0].path, "/2/a.wav");
    EXPECT_EQ(list[1].path, "/1/a.wav");
    EXPECT_EQ(list[1].duration, 63.5);
    EXPECT_EQ(list[2].path, "/b.wav");
}

TEST(GenerateMediaFileInfo, withoutPathsTheEntriesAreMadeUp) {
    const std::vector<StorySegment> story = {moment(0.0, 1.0, "a.mov")};
    for (const auto& paths : {std::optional<std::vector<std::string>>(), {std::vector<std::string>()}}) {
        const auto list = generateMediaFileInfo(paths, {{"a.mov", probed("a.mov")}}, story);
        ASSERT_EQ(list.size(), 1U);
        EXPECT_EQ(list[0].path, "/path/to/a.mov");
        EXPECT_EQ(list[0].duration, 3600.0);
    }
}

TEST(CreateDummyMediaInfo, hasOneEntryForEachClipWhereItFirstOccurs) {
    const auto list = createDummyMediaInfo(
        {moment(9.0, 10.0, "b.mov"), moment(0.0, 1.0, "a.wav"), moment(2.0, 3.0, "b.mov"), moment(4.0, 5.0, "")});
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0].filename, "b.mov");
    EXPECT_EQ(list[0].path, "/path/to/b.mov");
    EXPECT_EQ(list[1].path, "/path/to/a.wav");
    EXPECT_EQ(list[2].path, "/path/to/");
    for (const auto& entry : list) {
        EXPECT_EQ(entry.duration, 3600.0);
        EXPECT_EQ(entry.fps, 24.0);
        EXPECT_EQ(entry.startTimecode, std::nullopt);
        EXPECT_EQ(entry.codec, std::nullopt);
        EXPECT_FALSE(entry.hasVideo);
        EXPECT_TRUE(entry.hasAudio);
    }
}

TEST(CreateDummyMediaInfo, ofNoSegmentsIsEmpty) {
    EXPECT_TRUE(createDummyMediaInfo({}).empty());
}

} // namespace
} // namespace zuvo
