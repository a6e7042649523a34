#include "model/Media.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

TEST(MediaFileInfo, hasItsDefaultsInCode) {
    const MediaFileInfo info;
    EXPECT_EQ(info.fps, 24.0);
    EXPECT_FALSE(info.hasVideo);
    EXPECT_TRUE(info.hasAudio);
    EXPECT_EQ(info.startTimecode, std::nullopt);
    EXPECT_EQ(info.codec, std::nullopt);
}

TEST(MediaFileInfo, hasNoDefaultsInJson) {
    const auto decoded = decodeRecordText<MediaFileInfo>(R"({"path":"/a","filename":"a","duration":1})");
    EXPECT_EQ(decoded.failure, "fps is missing");
}

TEST(ProbeResult, decodesWithoutAnyOfItsOptionalKeys) {
    const auto decoded = decodeRecordText<ProbeResult>(
        R"({"path":"/a.wav","filename":"a.wav","duration":0,"hasVideo":false,"hasAudio":true})");
    ASSERT_TRUE(decoded.value.has_value()) << decoded.failure;
    EXPECT_EQ(decoded.value->startTimecodeSeconds, std::nullopt);
    EXPECT_EQ(decoded.value->bitDepth, std::nullopt);
}

} // namespace
} // namespace zuvo
