#include "platform/SoundDecoding.h"
#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"
#include "platform/Environment.h"

#include <QProcess>
#include <gtest/gtest.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class SoundDecodingTest : public testing::Test {
protected:
    /// A tone of that length as a WAV file.
    [[nodiscard]] std::string tone(const std::string& name, int seconds) {
        const auto made = disk / name;
        QProcess ffmpeg;
        ffmpeg.start(QString::fromStdString(fixedToolPath("ffmpeg")),
                     {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"), QStringLiteral("lavfi"),
                      QStringLiteral("-i"), QStringLiteral("sine=300:sample_rate=8000:duration=%1").arg(seconds),
                      QString::fromStdString(made)});
        EXPECT_TRUE(ffmpeg.waitForFinished());
        return made;
    }
    [[nodiscard]] QByteArray takeAll() {
        QByteArray all;
        QByteArray piece;
        do {
            piece = decoding.take(10000);
            all += piece;
        } while (!piece.isEmpty());
        return all;
    }

    TemporaryFolder disk;
    SoundDecoding decoding{fixedToolPath("ffmpeg")};
};

} // namespace

TEST_F(SoundDecodingTest, itStandsStillWhileNobodyTakesWhatIsDecoded) {
    decoding.start(tone("long.wav", 120), 0.0, {48000, 2}); // 23 MB
    ASSERT_TRUE(waitUntil([this] { return decoding.waiting() >= SoundDecoding::ahead; }));
    runEventLoop(std::chrono::milliseconds(100));
    EXPECT_LT(decoding.waiting(), SoundDecoding::ahead + 16 * 1024);
}

TEST_F(SoundDecodingTest, allOfTheSoundArrivesInTheFormatAskedFor) {
    decoding.start(tone("a.wav", 3), 1.0, {16000, 1});
    QByteArray sound;
    EXPECT_TRUE(waitUntil([&] {
        sound += takeAll();
        return sound.size() >= 2 * 16000 * 2;
    }));
    runEventLoop(std::chrono::milliseconds(50));
    EXPECT_EQ(sound.size() + takeAll().size(), 2 * 16000 * 2);
}

TEST_F(SoundDecodingTest, aFileWithoutSoundFails) {
    bool hasFailed = false;
    QObject::connect(&decoding, &SoundDecoding::failed, [&] { hasFailed = true; });
    decoding.start(disk.write("a.wav", "no sound"), 0.0, {});
    EXPECT_TRUE(waitUntil([&] { return hasFailed; }));
}

TEST_F(SoundDecodingTest, aPathIsNeverAnotherProtocol) {
    bool hasFailed = false;
    QObject::connect(&decoding, &SoundDecoding::failed, [&] { hasFailed = true; });
    decoding.start("concat:" + tone("a.wav", 1), 0.0, {});
    EXPECT_TRUE(waitUntil([&] { return hasFailed; }));
}

TEST_F(SoundDecodingTest, aListThatNamesOtherAddressesOpensNone) {
    bool hasFailed = false;
    QObject::connect(&decoding, &SoundDecoding::failed, [&] { hasFailed = true; });
    decoding.start(disk.write("a.m3u8", "#EXTM3U\n#EXTINF:1,\nhttp://127.0.0.1:1/a.ts\n#EXT-X-ENDLIST\n"), 0.0, {});
    EXPECT_TRUE(waitUntil([&] { return hasFailed; }));
}

TEST_F(SoundDecodingTest, itMayGoInTheMidst) {
    {
        SoundDecoding gone(fixedToolPath("ffmpeg"));
        gone.start(tone("a.wav", 60), 0.0, {});
    }
    runEventLoop(std::chrono::milliseconds(20));
    decoding.start("/no/such/file.wav", -5.0, {});
    EXPECT_EQ(decoding.take(10).size(), 0);
}
