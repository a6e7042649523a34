#include "fakes/pipeline/PipelineFixture.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class Audio : public PipelineFixture {
protected:
    std::vector<std::string> chunksOf(const std::string& lengthText) {
        tools->durationText["/audio.wav"] = lengthText;
        return ended(pipeline->chunkAudio("/audio.wav"));
    }

    std::string chunk(const std::string& number) const { return cachePath("chunks/chunk_" + number + ".wav"); }
};

const std::vector<std::string> theFileItself = {"/audio.wav"};

} // namespace

TEST_F(Audio, oneSourceIsConvertedDirectlyAndWritesNoList) {
    const auto audio = ended(pipeline->extractAudio({"/media/it's one.mov"}));
    EXPECT_EQ(audio, cachePath("extracted_audio.wav"));
    EXPECT_THAT(commands(), ElementsAre("ffmpeg|-y|-i|/media/it's one.mov|-ac|1|-ar|16000|-acodec|pcm_s16le|{cache}/"
                                        "extracted_audio.wav"));
    EXPECT_FALSE(exists(cachePath("concat.txt")));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Audio, severalSourcesAreListedInTheOrderGivenWithAQuoteAsItStands) {
    const std::vector<std::string> paths = {"/media/b.wav", "/media/it's a.wav"};
    EXPECT_TRUE(ended(pipeline->extractAudio(paths)));
    EXPECT_EQ(read(cachePath("concat.txt")), "file '/media/b.wav'\nfile '/media/it's a.wav'");
}

TEST_F(Audio, aListThatTheToolRejectsGivesNothing) {
    tools->when(call("ffmpeg", {"concat"}), failed());
    EXPECT_EQ(ended(pipeline->extractAudio({"/media/it's a.wav", "/media/b.wav"})), std::nullopt);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Audio, aListThatCannotBeWrittenDoesNotKeepTheToolFromRunning) {
    makeFolder(cachePath("concat.txt"));
    EXPECT_TRUE(ended(pipeline->extractAudio({"/a.wav", "/b.wav"})));
    EXPECT_THAT(tools->requests, SizeIs(1));
}

TEST_F(Audio, aLengthIsTrimmedAndParsed) {
    tools->durationText["/a.wav"] = "  12.345\r\n";
    EXPECT_EQ(ended(pipeline->getAudioDuration("/a.wav")), 12.345);
}

TEST_F(Audio, aFileOfUnknownLengthCountsAsOneFullChunk) {
    tools->durationText["/b.wav"] = "N/A\n";
    tools->durationText["/c.wav"] = "nan\n";
    EXPECT_EQ(ended(pipeline->getAudioDuration("/gone.wav")), 300.0);
    EXPECT_EQ(ended(pipeline->getAudioDuration("/b.wav")), 300.0);
    EXPECT_EQ(ended(pipeline->getAudioDuration("/c.wav")), 300.0);
}

TEST_F(Audio, exactlyThreeHundredSecondsAreOneChunkWhichIsTheFileItself) {
    EXPECT_EQ(chunksOf("300.0\n"), theFileItself);
    EXPECT_THAT(tools->requests, SizeIs(1));
}

TEST_F(Audio, aTenthOfASecondMoreMakesTwoChunks) {
    EXPECT_THAT(chunksOf("300.1\n"), ElementsAre(chunk("000"), chunk("001")));
    EXPECT_THAT(tools->requests, SizeIs(3));
}

TEST_F(Audio, theThousandAndFirstChunkHasFourDigits) {
    const auto chunks = chunksOf("300301\n"); // 1001.003 chunks
    ASSERT_THAT(chunks, SizeIs(1002));
    EXPECT_EQ(chunks[999], chunk("999"));
    EXPECT_EQ(chunks[1000], chunk("1000"));
    EXPECT_EQ(tools->commandLines().at(1001), "ffmpeg|-y|-i|/audio.wav|-ss|300000.0|-t|300.0|-ac|1|-ar|16000|-acodec|"
                                              "pcm_s16le|" +
                                                  chunk("1000"));
}

TEST_F(Audio, anUnknownLengthIsNotCut) {
    EXPECT_EQ(chunksOf(""), theFileItself);
    EXPECT_EQ(chunksOf("N/A\n"), theFileItself);
    EXPECT_EQ(chunksOf("0.0\n"), theFileItself);
}

TEST_F(Audio, aLengthThatNoFileHasIsNotCut) {
    for (const auto* length : {"-5\n", "nan\n", "inf\n", "1e300\n", "9e18\n", "1e15\n"}) {
        EXPECT_EQ(chunksOf(length), theFileItself) << length;
    }
    EXPECT_THAT(tools->requests, SizeIs(6)) << "six measurements and no cut";
}

TEST_F(Audio, aChunkThatCannotBeCutIsLeftOut) {
    tools->when(writing("chunk_001.wav"), failed());
    EXPECT_THAT(chunksOf("900.0\n"), ElementsAre(chunk("000"), chunk("002")));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Audio, ifNoChunkCanBeCutTheFileItselfIsUsed) {
    tools->when(call("ffmpeg", {}), failed());
    EXPECT_EQ(chunksOf("900.0\n"), theFileItself);
    EXPECT_THAT(tools->requests, SizeIs(4));
}

TEST_F(Audio, chunksOfAnEarlierRunAreRemoved) {
    write(cachePath("chunks/chunk_007.wav"), "old");
    write(cachePath("chunks/folder/file"), "old");
    (void)chunksOf("200.0\n");
    EXPECT_TRUE(exists(cachePath("chunks")));
    EXPECT_FALSE(exists(cachePath("chunks/chunk_007.wav")));
    EXPECT_FALSE(exists(cachePath("chunks/folder")));
}

TEST_F(Audio, aChunkFolderThatCannotBeMadeEndsWithTheFileItself) {
    write(home + "/Library/Caches", "a file where the folder should be");
    tools->when(call("ffmpeg", {}), failed());
    EXPECT_EQ(chunksOf("900.0\n"), theFileItself);
}
