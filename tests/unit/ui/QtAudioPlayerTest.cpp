#include "ui/QtAudioPlayer.h"

#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"

#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

void append(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>((value >> (8 * i)) & 0xffU);
}

/// A silent WAV file: one channel of 16 bits at 8000 a second.
std::string silence(std::uint32_t seconds) {
    const std::uint32_t rate = 8000;
    const auto size = seconds * rate * 2;
    std::string bytes = "RIFF";
    append(bytes, 36 + size, 4);
    bytes += "WAVEfmt ";
    append(bytes, 16, 4);
    append(bytes, 1, 2);
    append(bytes, 1, 2);
    append(bytes, rate, 4);
    append(bytes, rate * 2, 4);
    append(bytes, 2, 2);
    append(bytes, 16, 2);
    bytes += "data";
    append(bytes, size, 4);
    return bytes + std::string(size, '\0');
}

class QtAudio : public testing::Test {
protected:
    TemporaryFolder disk;
    QtAudioPlayers players;
};

} // namespace

TEST_F(QtAudio, aFileThatIsMissingCannotBeOpened) {
    EXPECT_EQ(players.open(disk / "gone.wav", [] {}), nullptr);
    EXPECT_EQ(players.open(disk.path(), [] {}), nullptr);
}

TEST_F(QtAudio, aFileIsPlayedFromThePlaceAskedFor) {
    const auto player = players.open(disk.write("a b#.wav", silence(60)), [] { ADD_FAILURE(); });
    ASSERT_NE(player, nullptr);
    player->setCurrentTime(30.0);
    EXPECT_EQ(player->currentTime(), 30.0);
    player->play();
    EXPECT_TRUE(waitUntil([&] { return player->currentTime() > 30.0; }));
    EXPECT_LT(player->currentTime(), 50.0);
    player->stop();
}

TEST_F(QtAudio, aFileThatIsNoSoundIsToldOf) {
    bool hasFailed = false;
    const auto player = players.open(disk.write("a.wav", "no sound at all"), [&] { hasFailed = true; });
    ASSERT_NE(player, nullptr);
    player->play();
    EXPECT_TRUE(waitUntil([&] { return hasFailed; }));
}

TEST_F(QtAudio, lengthsComeInTheOrderOfTheFiles) {
    std::optional<std::vector<std::optional<double>>> lengths;
    players.readDurations({disk.write("b.wav", silence(3)), disk / "gone.wav", disk.write("c.wav", "nothing"),
                           disk.write("a.wav", silence(2))},
                          [&](std::vector<std::optional<double>> told) { lengths = std::move(told); });
    ASSERT_TRUE(waitUntil([&] { return lengths.has_value(); }));
    ASSERT_EQ(lengths->size(), 4U);
    EXPECT_NEAR(lengths->at(0).value_or(0.0), 3.0, 0.05);
    EXPECT_FALSE(lengths->at(1));
    EXPECT_FALSE(lengths->at(2));
    EXPECT_NEAR(lengths->at(3).value_or(0.0), 2.0, 0.05);
}

TEST_F(QtAudio, playersThatAreGoneTellNothing) {
    bool isTold = false;
    {
        QtAudioPlayers gone;
        gone.readDurations({disk / "gone.wav"}, [&](const auto&) { isTold = true; });
    }
    runEventLoop(std::chrono::milliseconds(20));
    EXPECT_FALSE(isTold);
}

TEST(QtPlaybackTimers, aCallMayDestroyItsOwnTimer) {
    QtPlaybackTimers timers;
    int calls = 0;
    std::unique_ptr<PlaybackTimers::Timer> timer;
    timer = timers.every(0.001, [&] {
        ++calls;
        timer.reset();
    });
    EXPECT_TRUE(waitUntil([&] { return calls > 0; }));
    runEventLoop(std::chrono::milliseconds(20));
    EXPECT_EQ(calls, 1);
    bool isOver = false;
    timer = timers.after(-5.0, [&] { isOver = true; });
    EXPECT_TRUE(waitUntil([&] { return isOver; }));
}
