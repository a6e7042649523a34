#include "standin/SampleKnowledge.h"

#include "standin/Listener.h"
#include "standin/StandIn.h"
#include "unit/standin/Truth.h"

#include <cmath>
#include <numbers>

using namespace zuvo::standin;
using namespace zuvo::standin::test;

namespace {

constexpr double tolerance = 0.1;        // how far a word may be from the truth
constexpr double firstDuration = 63.131; // seconds of the sample's first file, by its container

class Recognition : public testing::Test {
protected:
    Recognition() : m_sample(loadSample(StandIn::defaultSampleFolder().toStdString()).value_or(SampleKnowledge())) {}

    void SetUp() override {
        ASSERT_EQ(m_sample.files.size(), 2U);
        ASSERT_EQ(m_truth.size(), 2U);
    }

    [[nodiscard]] std::vector<HeardWord> wordsIn(const QString& path) const {
        const auto sound = readWav(bytesOf(path));
        std::vector<HeardWord> words;
        if (!sound) {
            ADD_FAILURE() << "ffmpeg wrote no readable WAV";
            return words;
        }
        for (const HeardLine& line : listen(m_sample, *sound))
            words.insert(words.end(), line.words.begin(), line.words.end());
        return words;
    }

    /// The true words of a file (0 or 1) that lie in [start, end), moved so that `start` becomes `place`.
    [[nodiscard]] std::vector<TrueWord> truthOf(std::size_t file, double start, double end, double place) const {
        std::vector<TrueWord> words;
        for (const TrueWord& word : m_truth[file])
            if (word.start >= start && word.end <= end)
                words.push_back({word.word, word.start - start + place, word.end - start + place});
        return words;
    }

    static void expectHeard(const std::vector<HeardWord>& heard, const std::vector<TrueWord>& truth) {
        ASSERT_EQ(heard.size(), truth.size());
        for (std::size_t index = 0; index < heard.size(); ++index) {
            EXPECT_EQ(heard[index].word, truth[index].word);
            EXPECT_NEAR(heard[index].start, truth[index].start, tolerance) << truth[index].word;
            EXPECT_NEAR(heard[index].end, truth[index].end, tolerance) << truth[index].word;
        }
    }

    QTemporaryDir m_folder;
    SampleKnowledge m_sample;
    std::vector<std::vector<TrueWord>> m_truth = trueWords(StandIn::defaultSampleFolder());
};

std::vector<TrueWord> operator+(std::vector<TrueWord> a, const std::vector<TrueWord>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEST_F(Recognition, bothFilesJoinedAreHeardWordForWord) {
    const QString joined = joinedSample(m_folder, StandIn::defaultSampleFolder(), {1, 2});
    expectHeard(wordsIn(joined), truthOf(0, 0, 99, 0) + truthOf(1, 0, 99, firstDuration));
}

TEST_F(Recognition, theFilesInTheOtherOrderAreHeardInThatOrder) {
    const QString joined = joinedSample(m_folder, StandIn::defaultSampleFolder(), {2, 1});
    constexpr double secondDuration = 65.309;
    expectHeard(wordsIn(joined), truthOf(1, 0, 99, 0) + truthOf(0, 0, 99, secondDuration));
}

TEST_F(Recognition, oneFileAloneIsHeard) {
    expectHeard(wordsIn(joinedSample(m_folder, StandIn::defaultSampleFolder(), {2})), truthOf(1, 0, 99, 0));
}

TEST_F(Recognition, aCutOfEightSecondsHasItsWordsAndNoOthers) {
    const QString joined = joinedSample(m_folder, StandIn::defaultSampleFolder(), {1, 2});
    expectHeard(wordsIn(cut(m_folder, joined, 20.0, 8.0)), truthOf(0, 20.0, 28.0, 0));
}

TEST_F(Recognition, aCutAtAnOddPlaceInTheSecondFileHasItsWords) {
    const QString joined = joinedSample(m_folder, StandIn::defaultSampleFolder(), {1, 2});
    expectHeard(wordsIn(cut(m_folder, joined, firstDuration + 40.607, 9.0)), truthOf(1, 40.607, 49.607, 0));
}

TEST_F(Recognition, aCutAcrossTheJoinHasTheWordsOfBothFiles) {
    const QString joined = joinedSample(m_folder, StandIn::defaultSampleFolder(), {1, 2});
    const double before = firstDuration - 56.5;
    expectHeard(wordsIn(cut(m_folder, joined, 56.5, 17.5)),
                truthOf(0, 56.5, 99, 0) + truthOf(1, 0, 17.5 - before, before));
}

TEST_F(Recognition, aQuieterCopyIsStillTheSample) {
    const QString joined = joinedSample(m_folder, StandIn::defaultSampleFolder(), {1});
    const QString quiet = m_folder.filePath(QStringLiteral("quiet.wav"));
    ffmpeg(QStringList{QStringLiteral("-i"), joined, QStringLiteral("-af"), QStringLiteral("volume=-6dB")} +
           toSpeechWav() + QStringList{quiet});
    expectHeard(wordsIn(quiet), truthOf(0, 0, 99, 0));
}

TEST_F(Recognition, linesKeepTheTranscriptsTextAndSpan) {
    const QString joined = joinedSample(m_folder, StandIn::defaultSampleFolder(), {1});
    const auto sound = readWav(bytesOf(joined));
    ASSERT_TRUE(sound);
    const std::vector<HeardLine> lines = listen(m_sample, *sound);
    ASSERT_EQ(lines.size(), 11U);
    EXPECT_EQ(lines[7].text,
              "A storm took our only boat off the slip, and by morning there was nothing left but a rope.");
    EXPECT_NEAR(lines[7].start, 38.944, tolerance);
    EXPECT_NEAR(lines[7].end, 44.892, tolerance);
}

/// Three bursts of a tone, 2 to 6, 9 to 12 and 15 to 20 s.
Sound bursts() {
    Sound sound{16000, std::vector<float>(22 * 16000, 0.0F)};
    for (const auto& [begin, end] : {std::pair(2, 6), std::pair(9, 12), std::pair(15, 20)})
        for (std::size_t at = static_cast<std::size_t>(begin) * 16000; at < static_cast<std::size_t>(end) * 16000; ++at)
            sound.samples[at] =
                static_cast<float>(0.2 * std::sin(2.0 * std::numbers::pi * 220.0 * static_cast<double>(at) / 16000.0));
    return sound;
}

TEST_F(Recognition, otherAudioIsDescribedByWhereSpeechIs) {
    const std::vector<HeardLine> lines = listen(m_sample, bursts());
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].text, "Speech from 2.0 to 6.0 seconds.");
    EXPECT_EQ(lines[1].text, "Speech from 9.0 to 12.0 seconds.");
    EXPECT_EQ(lines[2].text, "Speech from 15.0 to 20.0 seconds.");
}

TEST_F(Recognition, otherAudioBeforeTheSampleIsDescribedAndTheSampleHeard) {
    const auto known = readWav(bytesOf(joinedSample(m_folder, StandIn::defaultSampleFolder(), {1})));
    ASSERT_TRUE(known);
    Sound both = bursts();
    both.samples.insert(both.samples.end(), known->samples.begin(), known->samples.end());
    const std::vector<HeardLine> lines = listen(m_sample, both);
    ASSERT_EQ(lines.size(), 14U);
    EXPECT_EQ(lines[2].text, "Speech from 15.0 to 20.0 seconds.");
    EXPECT_EQ(lines[3].text, "Could you tell us who you are, and where you grew up?");
    EXPECT_NEAR(lines[3].start, 22.0 + 1.2, tolerance);
}

TEST_F(Recognition, silenceAndNoSoundAtAllHoldNoLine) {
    EXPECT_THAT(listen(m_sample, Sound{16000, std::vector<float>(16000 * 5, 0.0F)}), testing::IsEmpty());
    EXPECT_THAT(listen(m_sample, Sound{16000, {}}), testing::IsEmpty());
}

TEST(SampleFolder, withoutAReadableTranscriptIsNoSample) {
    QTemporaryDir folder;
    EXPECT_FALSE(loadSample(folder.path().toStdString()));
    for (const char* text : {"", "[]", "{\"files\":[]}", "{\"envelopeStepSeconds\":0,\"files\":[]}",
                             "{\"envelopeStepSeconds\":0.02,\"files\":[{\"name\":\"a\"}]}"}) {
        std::ofstream(folder.filePath(QStringLiteral("transcript.json")).toStdString()) << text;
        EXPECT_FALSE(loadSample(folder.path().toStdString())) << text;
    }
}

TEST(KnownLines, aWordThatTheCutShavesIsKeptAndOneCutThroughIsNot) {
    const SampleFile file{
        "a", 10.0, {{1.0, 3.0, "One two three.", {{"One", 1.0, 1.5}, {"two", 1.5, 2.0}, {"three.", 2.0, 3.0}}}}, {}};
    const SampleKnowledge sample{0.02, {file}};
    // the audio is 1.04 s to 2.6 s of the file
    const std::vector<HeardLine> lines = linesOf(sample, {0, 78, -52, 0});
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, "One two");
    EXPECT_DOUBLE_EQ(lines[0].start, 0.0);
    EXPECT_NEAR(lines[0].end, 0.96, 1e-9);
}

} // namespace
