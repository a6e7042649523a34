// A machine without ffmpeg or ffprobe, and folders in which nothing can be written.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"

namespace zuvo::endtoend {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class MissingToolsTest : public TalkTest {
protected:
    InProcess inProcess{world};
};

TEST_F(MissingToolsTest, withoutFfmpegNoAudioIsExtractedAndNothingPaidFor) {
    inProcess.platform.environment.tools.ffmpeg = "/nowhere/ffmpeg";
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::error);
    EXPECT_THAT(joined(inProcess.log()), HasSubstr("  talk.wav: 0:12, TC: none, 8000Hz\n✓ Probed 1 file\n"));
    EXPECT_THAT(joined(inProcess.log()), EndsWith("Extracting audio from files...\n✗ Audio extraction failed\n"));
    EXPECT_TRUE(world.services.requests().empty());
}

TEST_F(MissingToolsTest, withoutFfprobeTheMineEndsWithoutSources) {
    inProcess.platform.environment.tools.ffprobe = "/nowhere/ffprobe";
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::complete);
    const auto log = joined(inProcess.log());
    EXPECT_THAT(log, HasSubstr("📋 Probing 1 source file...\n  ⚠ Failed to probe talk.wav\nExtracting audio"));
    EXPECT_THAT(log, HasSubstr("  talk.wav: 12s extracted\n"
                               "  Energy: 3 loud, 0 medium, 0 quiet — thresholds: quiet<-60dB<med<-60dB<loud\n"));
    EXPECT_THAT(log, Not(HasSubstr("Source clip map")));
    EXPECT_FALSE(exists(world.cache("probe_results.json")));
    EXPECT_EQ(jsonOf(world.cache("segments.json")).at(0).at("sourceClip"), "source") << "as the model named it";
}

TEST_F(MissingToolsTest, aToolThatIsNoProgramIsAMissingTool) {
    inProcess.platform.environment.tools.ffmpeg = world.folder.write("ffmpeg", "no program");
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::error);
    EXPECT_THAT(joined(inProcess.log()), EndsWith("✗ Audio extraction failed\n"));
}

TEST_F(MissingToolsTest, aFileInThePlaceOfTheCacheFolderLetsTheExtractionFail) {
    world.folder.write("home/Library/Caches/ZuvoManager", "in the way");
    mine({file});
    thenItEndsWith(1);
    thenLogEndsWith({"Extracting audio from files...", "✗ Audio extraction failed"});
}

TEST_F(MissingToolsTest, aFileInThePlaceOfTheExportFolderLosesTheExportsAndSaysSo) {
    world.folder.write("home/Library/Application Support/ZuvoManager", "in the way");
    mine({file});
    thenItEndsWith(1);
    EXPECT_THAT(ending.errors, testing::HasSubstr("/story_brief.md was not saved: "));
    EXPECT_EQ(bytesOf(world.home() + "/Library/Application Support/ZuvoManager"), "in the way");
    EXPECT_EQ(jsonOf(world.cache("segments.json")).size(), 1U);
}

TEST_F(MissingToolsTest, aLinkInThePlaceOfTheTemporaryFolderIsRefused) {
    const auto elsewhere = world.folder.makeFolder("elsewhere");
    const auto link = world.temporary() + "/zuvo-" + std::to_string(geteuid());
    ASSERT_EQ(symlink(elsewhere.c_str(), link.c_str()), 0);
    mine({file});
    thenItEndsWith(1);
    EXPECT_EQ(ending.errors, "zuvo: The folder for temporary files in " + world.temporary() +
                                 " cannot be made or is not this user's own\n");
    EXPECT_TRUE(namesIn(elsewhere).empty());
    EXPECT_TRUE(world.services.requests().empty());
}

} // namespace
} // namespace zuvo::endtoend
