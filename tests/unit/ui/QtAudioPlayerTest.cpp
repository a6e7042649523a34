#include "ui/QtAudioPlayer.h"

#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"
#include "platform/Environment.h"
#include "ui/PlaybackClock.h"

#include <QProcess>
#include <QStringList>
#include <cmath>
#include <cstring>
#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

void append(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>((value >> (8 * i)) & 0xffU);
}

/// A WAV file of one channel of 16 bits, so many samples a second: those whose bytes these are.
std::string wavOf(std::uint32_t rate, const std::string& samples) {
    const auto size = static_cast<std::uint32_t>(samples.size());
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
    return bytes + samples;
}

std::string silence(std::uint32_t seconds) {
    constexpr std::uint32_t rate = 8000;
    return wavOf(rate, std::string(std::size_t{seconds} * rate * 2, '\0'));
}

/// Samples a second of the sound that tells its place, and of what the tests look at.
constexpr int placeRate = 8000;
constexpr int placeSeconds = 12;

/// A hiss that is the same in every run and never repeats: any piece of it tells where it was taken from.
const std::vector<double>& hiss() {
    static const std::vector<double> made = [] {
        std::vector<double> samples(static_cast<std::size_t>(placeRate * placeSeconds));
        std::uint32_t state = 20;
        for (auto& sample : samples) {
            state = state * 1664525U + 1013904223U;
            sample = static_cast<double>(state >> 16U) / 65536.0 - 0.5;
        }
        return samples;
    }();
    return made;
}

std::string hissingWav() {
    std::string samples;
    for (const auto sample : hiss())
        append(samples, static_cast<std::uint16_t>(static_cast<int>(sample * 30000.0)), 2);
    return wavOf(placeRate, samples);
}

/// Keeps what would be heard.
class Recording final : public SoundOutput {
public:
    struct Tape {
        QByteArray sound;
        int begun = 0;
        bool isBroken = false;
        double played = 0.0; ///< seconds, as the device says
    };

    explicit Recording(Tape* tape) : m_tape(tape) {}
    [[nodiscard]] SoundFormat format() const override { return {48000, 2}; }
    void begin() override { ++m_tape->begun; }
    [[nodiscard]] qsizetype room() const override { return 40001; } // not of whole frames
    void write(const QByteArray& frames) override {
        EXPECT_EQ(frames.size() % format().bytesPerFrame(), 0);
        m_tape->sound += frames;
    }
    [[nodiscard]] double playedSeconds() const override { return m_tape->played; }
    [[nodiscard]] bool hasFailed() const override { return m_tape->isBroken; }

private:
    Tape* m_tape;
};

/// The left channel at `placeRate`, from the first frame that was heard.
std::vector<double> heard(const QByteArray& sound) {
    constexpr int framesEach = 48000 / placeRate;
    constexpr int bytesPerFrame = 4;
    std::vector<double> samples;
    for (qsizetype at = 0; at + framesEach * bytesPerFrame <= sound.size(); at += framesEach * bytesPerFrame) {
        std::int16_t sample = 0;
        std::memcpy(&sample, sound.constData() + at, sizeof sample);
        samples.push_back(sample);
    }
    return samples;
}

/// Where in the hiss a piece of it begins, in seconds: the place at which the two are most alike. Nothing if it is like
/// it nowhere.
std::optional<double> placeInHiss(std::vector<double> piece) {
    constexpr std::size_t enough = 600; // of 75 ms
    piece.resize(std::min(piece.size(), enough));
    double best = 0.0;
    double squaresThere = 0.0;
    std::size_t place = 0;
    for (std::size_t at = 0; at + piece.size() <= hiss().size(); ++at) {
        double product = 0.0;
        for (std::size_t i = 0; i < piece.size(); ++i)
            product += piece[i] * hiss()[at + i];
        if (product > best) {
            best = product;
            place = at;
        }
    }
    double squares = 0.0;
    for (std::size_t i = 0; i < piece.size(); ++i) {
        squares += piece[i] * piece[i];
        squaresThere += hiss()[place + i] * hiss()[place + i];
    }
    constexpr double alike = 0.5; // 1 is the same sound, louder or not
    if (best <= 0.0 || best < alike * std::sqrt(squares * squaresThere))
        return std::nullopt;
    return static_cast<double>(place) / placeRate;
}

class QtAudio : public testing::Test {
protected:
    /// The hiss in another form, made by ffmpeg.
    [[nodiscard]] std::string converted(const std::string& name, const QStringList& options) {
        const auto made = disk / name;
        QProcess ffmpeg;
        ffmpeg.start(QString::fromStdString(fixedToolPath("ffmpeg")),
                     QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")} + options +
                         QStringList{QString::fromStdString(made)});
        EXPECT_TRUE(ffmpeg.waitForFinished());
        EXPECT_EQ(ffmpeg.exitCode(), 0) << ffmpeg.readAllStandardError().toStdString();
        return made;
    }

    /// Plays the file from there and expects that what is heard first is what lies there, to 30 ms.
    void thenIsHeardFrom(const std::string& file, double seconds) {
        const auto player = players.open(file, [] { ADD_FAILURE() << "The file was not played"; });
        ASSERT_NE(player, nullptr);
        tape = {};
        player->setCurrentTime(seconds);
        player->play();
        EXPECT_EQ(player->currentTime(), seconds);
        EXPECT_TRUE(tape.sound.isEmpty());
        ASSERT_TRUE(waitUntil([this] { return tape.sound.size() > 48000 * 4 / 2; })) << file;
        const auto place = placeInHiss(heard(tape.sound));
        ASSERT_TRUE(place.has_value()) << file << " at " << seconds;
        EXPECT_NEAR(*place, seconds, 0.030) << file;
        EXPECT_EQ(tape.begun, 1);
        player->stop();
    }

    TemporaryFolder disk;
    Recording::Tape tape;
    QtAudioPlayers players{fixedToolPath("ffmpeg"), [this] { return std::make_unique<Recording>(&tape); }};
};

} // namespace

TEST_F(QtAudio, aFileThatIsMissingCannotBeOpened) {
    EXPECT_EQ(players.open(disk / "gone.wav", [] {}), nullptr);
    EXPECT_EQ(players.open(disk.path(), [] {}), nullptr);
}

TEST_F(QtAudio, theHissTellsItsPlaceAndSilenceNone) {
    const std::vector<double> piece(hiss().begin() + 3 * placeRate, hiss().begin() + 4 * placeRate);
    EXPECT_EQ(placeInHiss(piece), 3.0);
    EXPECT_EQ(placeInHiss(std::vector<double>(placeRate, 0.0)), std::nullopt);
    EXPECT_EQ(placeInHiss({}), std::nullopt);
}

TEST_F(QtAudio, theFirstSampleHeardOfAWavIsThatOfThePlaceAskedFor) {
    const auto wav = disk.write("a b#:%.wav", hissingWav());
    for (const auto seconds : {0.0, 0.01, 3.217, 11.0})
        thenIsHeardFrom(wav, seconds);
}

TEST_F(QtAudio, theFirstSampleHeardOfAnMp3IsThatOfThePlaceAskedFor) {
    const auto wav = QString::fromStdString(disk.write("hiss.wav", hissingWav()));
    const auto mp3 = converted("hiss.mp3", {QStringLiteral("-i"), wav, QStringLiteral("-b:a"), QStringLiteral("128k"),
                                            QStringLiteral("-ar"), QStringLiteral("44100")});
    for (const auto seconds : {0.0, 3.217, 11.0})
        thenIsHeardFrom(mp3, seconds);
}

TEST_F(QtAudio, theFirstSampleHeardOfAMovAndAnMp4IsThatOfThePlaceAskedFor) {
    const auto wav = QString::fromStdString(disk.write("hiss.wav", hissingWav()));
    const QStringList withPicture = {QStringLiteral("-f"),   QStringLiteral("lavfi"),
                                     QStringLiteral("-i"),   QStringLiteral("color=c=black:s=32x32:r=25:d=12"),
                                     QStringLiteral("-i"),   wav,
                                     QStringLiteral("-c:v"), QStringLiteral("mpeg4")};
    const auto mov =
        converted("hiss.mov", withPicture + QStringList{QStringLiteral("-c:a"), QStringLiteral("pcm_s16le"),
                                                        QStringLiteral("-ar"), QStringLiteral("48000")});
    const auto mp4 = converted("hiss.mp4", withPicture + QStringList{QStringLiteral("-c:a"), QStringLiteral("aac"),
                                                                     QStringLiteral("-b:a"), QStringLiteral("128k"),
                                                                     QStringLiteral("-ar"), QStringLiteral("48000")});
    for (const auto seconds : {0.0, 3.217, 11.0}) {
        thenIsHeardFrom(mov, seconds);
        thenIsHeardFrom(mp4, seconds);
    }
}

TEST_F(QtAudio, whatIsHeardGoesOnWithoutAGap) {
    thenIsHeardFrom(disk.write("a.wav", hissingWav()), 2.0);
    const auto player = players.open(disk / "a.wav", [] { ADD_FAILURE(); });
    tape = {};
    player->setCurrentTime(2.0);
    player->play();
    ASSERT_TRUE(waitUntil([this] { return tape.sound.size() >= 48000 * 4 * 10; })); // to the end, 12 s
    EXPECT_EQ(tape.sound.size(), 48000 * 4 * 10);
    const auto all = heard(tape.sound);
    for (const auto seconds : {1, 5, 9}) {
        const auto from = all.begin() + seconds * placeRate;
        const auto place = placeInHiss({from, from + placeRate / 4});
        ASSERT_TRUE(place.has_value()) << seconds;
        EXPECT_NEAR(*place, 2.0 + seconds, 0.001);
    }
}

TEST_F(QtAudio, behindTheEndOfAFileNothingIsHeard) {
    const auto player = players.open(disk.write("a.wav", silence(2)), [] { ADD_FAILURE(); });
    player->setCurrentTime(150.0);
    player->play();
    runEventLoop(std::chrono::milliseconds(400));
    EXPECT_TRUE(tape.sound.isEmpty());
    EXPECT_EQ(player->currentTime(), 150.0);
}

TEST_F(QtAudio, theTimeFollowsTheDeviceAndRunsOnBetweenItsWords) {
    const auto player = players.open(disk.write("a.wav", silence(60)), [] { ADD_FAILURE(); });
    player->setCurrentTime(30.0);
    player->play();
    ASSERT_TRUE(waitUntil([this] { return !tape.sound.isEmpty(); }));
    EXPECT_EQ(player->currentTime(), 30.0); // written, but not heard yet
    tape.played = 0.1;
    ASSERT_TRUE(waitUntil([&] { return player->currentTime() >= 30.1; }));
    double before = player->currentTime();
    int steps = 0;
    EXPECT_TRUE(waitUntil([&] {
        const auto now = player->currentTime();
        EXPECT_GE(now, before);
        steps += now > before ? 1 : 0;
        before = now;
        return steps > 10;
    }));
    EXPECT_LE(before, 30.0 + 0.1 + 0.25); // the device has said nothing more
}

TEST_F(QtAudio, aFileThatIsNoSoundIsToldOf) {
    bool hasFailed = false;
    const auto player = players.open(disk.write("a.wav", "no sound at all"), [&] { hasFailed = true; });
    ASSERT_NE(player, nullptr);
    player->play();
    EXPECT_TRUE(waitUntil([&] { return hasFailed; }));
    EXPECT_EQ(tape.begun, 0);
}

TEST_F(QtAudio, aMachineWithoutFfmpegIsToldOf) {
    QtAudioPlayers without(disk / "no-ffmpeg", [this] { return std::make_unique<Recording>(&tape); });
    bool hasFailed = false;
    const auto player = without.open(disk.write("a.wav", silence(2)), [&] { hasFailed = true; });
    player->play();
    EXPECT_TRUE(waitUntil([&] { return hasFailed; }));
}

TEST_F(QtAudio, aDeviceThatCannotBeOpenedOrGoesEndsThePlayback) {
    const auto file = disk.write("a.wav", silence(60));
    for (const bool isBrokenFirst : {true, false}) {
        tape = {};
        tape.isBroken = isBrokenFirst;
        int failures = 0;
        const auto player = players.open(file, [&] { ++failures; });
        player->play();
        if (!isBrokenFirst) {
            ASSERT_TRUE(waitUntil([this] { return !tape.sound.isEmpty(); }));
            tape.isBroken = true;
        }
        EXPECT_TRUE(waitUntil([&] { return failures > 0; }));
        runEventLoop(std::chrono::milliseconds(60));
        EXPECT_EQ(failures, 1);
    }
}

TEST_F(QtAudio, withoutADeviceTheSoundPassesUnheardInItsOwnTime) {
    QtAudioPlayers unheard(fixedToolPath("ffmpeg"), unheardSoundOutput);
    const auto player = unheard.open(disk.write("a.wav", silence(60)), [] { ADD_FAILURE(); });
    player->setCurrentTime(30.0);
    player->play();
    EXPECT_TRUE(waitUntil([&] { return player->currentTime() > 30.5; }));
    EXPECT_LT(player->currentTime(), 50.0);
    player->stop();
}

TEST_F(QtAudio, theDesktopsOwnSoundPlaysOrEndsAndNothingElse) {
    QtAudioPlayers own(fixedToolPath("ffmpeg"));
    bool hasFailed = false;
    const auto player = own.open(disk.write("a.wav", silence(60)), [&] { hasFailed = true; });
    ASSERT_NE(player, nullptr);
    player->setCurrentTime(30.0);
    player->play();
    EXPECT_TRUE(waitUntil([&] { return hasFailed || player->currentTime() > 30.0; }));
    player->stop();
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
        QtAudioPlayers gone(fixedToolPath("ffmpeg"));
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

// The clock between the words of a device.

TEST(PlaybackClock, itStandsUntilSomethingHasBeenHeard) {
    PlaybackClock clock;
    clock.report(0.0, 5.0);
    EXPECT_EQ(clock.at(7.0), 0.0);
}

TEST(PlaybackClock, betweenTwoWordsItRunsWithTheTimeThatPasses) {
    PlaybackClock clock;
    clock.report(0.1, 5.0);
    EXPECT_NEAR(clock.at(5.0), 0.10, 1e-9);
    EXPECT_NEAR(clock.at(5.05), 0.15, 1e-9);
    clock.report(0.1, 5.05); // nothing new
    EXPECT_NEAR(clock.at(5.08), 0.18, 1e-9);
}

TEST(PlaybackClock, aDeviceThatGoesInLeapsMakesNoLeapsAndNoWayBack) {
    PlaybackClock clock;
    double before = 0.0;
    for (int millisecond = 0; millisecond < 3000; ++millisecond) {
        const auto now = millisecond / 1000.0;
        clock.report(0.1 * std::floor(now / 0.1) + 0.1, now); // says it every 100 ms
        const auto told = clock.at(now);
        EXPECT_GE(told, before);
        if (millisecond > 0) {
            EXPECT_LE(told - before, 0.0016);
        }
        EXPECT_NEAR(told, now + 0.1, 0.1);
        before = told;
    }
}

TEST(PlaybackClock, itLeansTowardsADeviceThatIsALittleAheadOrBehind) {
    for (const auto off : {0.08, -0.08}) {
        PlaybackClock clock;
        clock.report(0.1, 0.0);
        for (int step = 1; step <= 100; ++step) {
            const auto now = step * 0.02;
            clock.report(0.1 + now + off, now);
        }
        EXPECT_NEAR(clock.at(2.0), 0.1 + 2.0 + off, 0.005) << off;
    }
}

TEST(PlaybackClock, aDeviceThatIsFarAheadIsFollowedAtOnce) {
    PlaybackClock clock;
    clock.report(0.1, 0.0);
    clock.report(3.0, 0.1);
    EXPECT_NEAR(clock.at(0.1), 3.0, 1e-9);
}

TEST(PlaybackClock, aDeviceThatStandsStillHoldsTheClock) {
    PlaybackClock clock;
    clock.report(0.1, 0.0);
    EXPECT_NEAR(clock.at(60.0), 0.1 + 0.25, 1e-9);
    clock.report(0.2, 60.0);
    EXPECT_GE(clock.at(60.0), 0.35);
    EXPECT_LE(clock.at(61.0), 0.45);
}
