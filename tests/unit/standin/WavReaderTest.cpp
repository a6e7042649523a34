#include "standin/WavReader.h"

#include <cstring>
#include <gmock/gmock.h>
#include <string>

using namespace zuvo::standin;

namespace {

std::string little(unsigned value, int bytes) {
    std::string text;
    for (int index = 0; index < bytes; ++index)
        text += static_cast<char>(value >> (8 * index) & 0xFFU);
    return text;
}

std::string formatChunk(unsigned kind, unsigned channels, unsigned rate, unsigned bits) {
    const unsigned frame = channels * bits / 8;
    return "fmt " + little(16, 4) + little(kind, 2) + little(channels, 2) + little(rate, 4) + little(rate * frame, 4) +
           little(frame, 2) + little(bits, 2);
}

std::string wav(const std::string& chunks) {
    return "RIFF" + little(static_cast<unsigned>(chunks.size()) + 4, 4) + "WAVE" + chunks;
}

std::string dataChunk(const std::string& bytes) {
    return "data" + little(static_cast<unsigned>(bytes.size()), 4) + bytes;
}

TEST(WavReader, sixteenBitMono) {
    const auto sound =
        readWav(wav(formatChunk(1, 1, 16000, 16) + dataChunk(little(0, 2) + little(16384, 2) + little(0x8000, 2))));
    ASSERT_TRUE(sound);
    EXPECT_EQ(sound->sampleRate, 16000);
    EXPECT_THAT(sound->samples, testing::ElementsAre(0.0F, 0.5F, -1.0F));
    EXPECT_DOUBLE_EQ(sound->duration(), 3.0 / 16000.0);
}

TEST(WavReader, channelsAreAveraged) {
    const auto sound = readWav(wav(formatChunk(1, 2, 8000, 16) + dataChunk(little(16384, 2) + little(0, 2))));
    ASSERT_TRUE(sound);
    EXPECT_THAT(sound->samples, testing::ElementsAre(0.25F));
}

TEST(WavReader, eightTwentyFourAndThirtyTwoBits) {
    EXPECT_THAT(readWav(wav(formatChunk(1, 1, 8000, 8) + dataChunk(little(192, 1) + little(128, 1))))->samples,
                testing::ElementsAre(0.5F, 0.0F));
    EXPECT_THAT(readWav(wav(formatChunk(1, 1, 8000, 24) + dataChunk(little(0xC00000, 3))))->samples,
                testing::ElementsAre(-0.5F));
    EXPECT_THAT(readWav(wav(formatChunk(1, 1, 8000, 32) + dataChunk(little(0x20000000, 4))))->samples,
                testing::ElementsAre(0.25F));
}

TEST(WavReader, floatsAreHeldWithinOne) {
    const float values[] = {0.125F, 2.0F, -2.0F};
    std::string bytes(sizeof values, '\0');
    std::memcpy(bytes.data(), values, sizeof values);
    const auto sound = readWav(wav(formatChunk(3, 1, 8000, 32) + dataChunk(bytes)));
    ASSERT_TRUE(sound);
    EXPECT_THAT(sound->samples, testing::ElementsAre(0.125F, 1.0F, -1.0F));
}

TEST(WavReader, otherChunksAndTheirPaddingArePassedOver) {
    const std::string list = "LIST" + little(3, 4) + "abc" + std::string(1, '\0');
    const auto sound = readWav(wav(formatChunk(1, 1, 8000, 16) + list + dataChunk(little(16384, 2))));
    ASSERT_TRUE(sound);
    EXPECT_THAT(sound->samples, testing::ElementsAre(0.5F));
}

TEST(WavReader, aDataSizeThatWasNeverFilledInMeansToTheEnd) {
    const auto sound = readWav(wav(formatChunk(1, 1, 8000, 16) + "data" + little(0xFFFFFFFF, 4) + little(16384, 2)));
    ASSERT_TRUE(sound);
    EXPECT_THAT(sound->samples, testing::ElementsAre(0.5F));
}

TEST(WavReader, noSamplesAreASoundWithoutLength) {
    const auto sound = readWav(wav(formatChunk(1, 1, 8000, 16) + dataChunk("")));
    ASSERT_TRUE(sound);
    EXPECT_DOUBLE_EQ(sound->duration(), 0.0);
}

TEST(WavReader, whatIsNoWaveFileIsRefused) {
    EXPECT_FALSE(readWav(""));
    EXPECT_FALSE(readWav("RIFF0000WAVX"));
    EXPECT_FALSE(readWav("an MP3, perhaps, but certainly no wave file"));
    EXPECT_FALSE(readWav(wav(dataChunk(little(1, 2)))));                                  // no format
    EXPECT_FALSE(readWav(wav(formatChunk(1, 1, 8000, 16))));                              // no data
    EXPECT_FALSE(readWav(wav(formatChunk(1, 0, 8000, 16) + dataChunk(little(1, 2)))));    // no channel
    EXPECT_FALSE(readWav(wav(formatChunk(1, 1, 0, 16) + dataChunk(little(1, 2)))));       // no rate
    EXPECT_FALSE(readWav(wav(formatChunk(85, 1, 8000, 16) + dataChunk(little(1, 2)))));   // compressed
    EXPECT_FALSE(readWav(wav("fmt " + little(4, 4) + "abcd" + dataChunk(little(1, 2))))); // format cut short
}

} // namespace
