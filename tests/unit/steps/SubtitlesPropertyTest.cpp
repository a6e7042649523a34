#include "steps/ExportTexts.h"
#include "support/SpecialNumbers.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <sstream>

namespace zuvo {
namespace {

/// One card as it stands in the file; times in milliseconds.
struct ReadCard {
    std::size_t number = 0;
    long start = 0;
    long end = 0;
    std::vector<std::string> words;
};

/// "HH:MM:SS,mmm" of a time that is not below zero and of at most 9999 hours; -1 for anything else.
long milliseconds(const std::string& time) {
    std::istringstream in(time);
    long hours = 0;
    long minutes = 0;
    long seconds = 0;
    long rest = 0;
    char colon = 0;
    char secondColon = 0;
    char comma = 0;
    in >> hours >> colon >> minutes >> secondColon >> seconds >> comma >> rest;
    const bool inRange = hours >= 0 && hours <= 9999 && minutes >= 0 && minutes <= 59 && seconds >= 0 &&
                         seconds <= 59 && rest >= 0 && rest <= 999;
    if (!in || colon != ':' || secondColon != ':' || comma != ',' || !inRange)
        return -1;
    return ((hours * 60 + minutes) * 60 + seconds) * 1000 + rest;
}

/// Reads a file whose display words hold neither blanks nor line ends; a line out of place fails the running test.
std::vector<ReadCard> readCards(const std::string& text) {
    std::vector<ReadCard> cards;
    std::istringstream in(text);
    std::string number;
    while (std::getline(in, number)) {
        std::string times;
        std::string words;
        std::string empty;
        const bool whole = std::getline(in, times) && std::getline(in, words) && std::getline(in, empty);
        EXPECT_TRUE(whole && empty.empty()) << text;
        const auto arrow = times.find(" --> ");
        if (!whole || arrow == std::string::npos) {
            ADD_FAILURE() << "no card: " << number << "\n" << times;
            return cards;
        }
        ReadCard card{
            std::stoul(number), milliseconds(times.substr(0, arrow)), milliseconds(times.substr(arrow + 5)), {}};
        std::istringstream pieces(words);
        for (std::string word; std::getline(pieces, word, ' ');)
            card.words.push_back(word);
        cards.push_back(std::move(card));
    }
    return cards;
}

struct Story {
    std::vector<StorySegment> segments;
    std::vector<WordSegment> words;
    std::vector<std::string> displayWords; ///< of all moments, in story order
};

class StoryMaker {
public:
    explicit StoryMaker(std::uint32_t seed) : random_(seed) {}

    double between(double low, double high) { return std::uniform_real_distribution<>(low, high)(random_); }
    std::size_t count(std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(random_); }

    /// A moment of 1 to 30 s with up to 40 display words, which no other moment has.
    void addMoment(Story& story) {
        const auto index = static_cast<std::int64_t>(story.segments.size());
        const double start = between(0.0, 5000.0);
        std::string text;
        for (std::size_t i = count(40); i > 0; --i) {
            story.displayWords.push_back("w" + std::to_string(story.displayWords.size()));
            text += std::string(count(2) + 1, ' ') + story.displayWords.back();
        }
        // An empty translation would show the transcript instead.
        story.segments.push_back({index, start, start + between(1.0, 30.0), "A.wav", "", text, std::nullopt});
    }

    /// Up to 40 spoken words in order, all within the moment.
    WordSegment spokenWords(const StorySegment& moment) {
        const double duration = moment.endTime - moment.startTime;
        const auto words = count(40);
        WordSegment spoken{moment.index, {}};
        for (std::size_t i = 0; i < words; ++i) {
            const double share = duration / static_cast<double>(words);
            const double start = share * static_cast<double>(i);
            spoken.words.push_back({"x", start + between(0.0, share * 0.4), start + between(share * 0.5, share)});
        }
        return spoken;
    }

    /// Times as no service should send them.
    WordSegment wildWords(const StorySegment& moment, const std::vector<double>& wild) {
        WordSegment spoken{moment.index, {}};
        for (std::size_t i = count(20); i > 0; --i)
            spoken.words.push_back({"x", wild[count(wild.size() - 1)], wild[count(wild.size() - 1)]});
        return spoken;
    }

private:
    std::mt19937 random_;
};

void expectNumbersRiseByOne(const std::vector<ReadCard>& cards) {
    for (std::size_t i = 0; i < cards.size(); ++i)
        EXPECT_EQ(cards[i].number, i + 1);
}

void expectEveryWordOnceAndInOrder(const std::vector<ReadCard>& cards, const std::vector<std::string>& displayWords) {
    std::vector<std::string> shown;
    for (const auto& card : cards) {
        EXPECT_FALSE(card.words.empty());
        shown.insert(shown.end(), card.words.begin(), card.words.end());
    }
    EXPECT_EQ(shown, displayWords);
}

/// Cards stand one behind the other and none outlasts the cut.
void expectTimesInOrder(const std::vector<ReadCard>& cards, const Story& story) {
    double cut = 0.0;
    for (const auto& segment : story.segments)
        cut += segment.endTime - segment.startTime;
    long previousEnd = 0;
    for (const auto& card : cards) {
        EXPECT_GE(card.start, previousEnd) << card.number;
        EXPECT_GE(card.end, card.start) << card.number;
        previousEnd = card.end;
    }
    EXPECT_LE(static_cast<double>(previousEnd), cut * 1000.0);
}

constexpr std::size_t storyCount = 1000;

TEST(SubtitlesProperty, spokenCardsFollowOneAnotherAndShowEveryWordOnce) {
    StoryMaker maker(1);
    std::size_t cardCount = 0;
    for (std::size_t run = 0; run < storyCount; ++run) {
        Story story;
        for (std::size_t i = maker.count(6); i > 0; --i) {
            maker.addMoment(story);
            auto spoken = maker.spokenWords(story.segments.back());
            // A moment without words takes the even method, whose delay may outlast a crowded moment's last share.
            if (spoken.words.empty())
                spoken.words.push_back({"x", 0.0, 0.5});
            story.words.push_back(std::move(spoken));
        }
        const auto cards = readCards(subtitlesText(story.segments, story.words));
        expectNumbersRiseByOne(cards);
        expectEveryWordOnceAndInOrder(cards, story.displayWords);
        expectTimesInOrder(cards, story);
        cardCount += cards.size();
        if (HasFailure())
            FAIL() << "story " << run;
    }
    EXPECT_GT(cardCount, storyCount);
}

TEST(SubtitlesProperty, evenCardsShowEveryWordOnceOnAtLeastThreeButTheLast) {
    StoryMaker maker(2);
    for (std::size_t run = 0; run < storyCount; ++run) {
        Story story;
        maker.addMoment(story);
        const auto cards = readCards(subtitlesText(story.segments, {}));
        expectNumbersRiseByOne(cards);
        expectEveryWordOnceAndInOrder(cards, story.displayWords);
        for (std::size_t i = 0; i + 1 < cards.size(); ++i)
            EXPECT_GE(cards[i].words.size(), 3U);
        if (HasFailure())
            FAIL() << "story " << run;
    }
}

TEST(SubtitlesProperty, wildTimesLoseNoWordAndKeepTheTextBounded) {
    const std::vector<double> wild = {0.0,
                                      1.0,
                                      -5.0,
                                      3.5e9,
                                      1e308,
                                      -1e308,
                                      1e-308,
                                      9.3e18,
                                      infinity,
                                      -infinity,
                                      std::numeric_limits<double>::quiet_NaN()};
    // No field of a time is longer than a 64-bit number, and each card has eight of them besides its own.
    constexpr std::size_t longestCardFrame = 9 * 21 + 16;
    StoryMaker maker(3);
    for (std::size_t run = 0; run < 3 * storyCount; ++run) {
        Story story;
        std::size_t textBytes = 0;
        for (std::size_t i = maker.count(4); i > 0; --i) {
            maker.addMoment(story);
            story.segments.back().startTime = wild[maker.count(wild.size() - 1)];
            story.segments.back().endTime = wild[maker.count(wild.size() - 1)];
            story.words.push_back(maker.wildWords(story.segments.back(), wild));
            textBytes += story.segments.back().translation.size();
        }
        const auto text = subtitlesText(story.segments, story.words);
        EXPECT_LE(text.size(), textBytes + story.displayWords.size() * longestCardFrame);
        const auto cards = readCards(text);
        expectNumbersRiseByOne(cards);
        expectEveryWordOnceAndInOrder(cards, story.displayWords);
        if (HasFailure())
            FAIL() << "story " << run;
    }
}

TEST(SubtitlesProperty, anAbsurdDurationGivesNoMoreCardsThanWords) {
    const StorySegment moment{1, 0.0, 1e308, "A.wav", "", "a b c d e f g", std::nullopt};
    // Three words a card is the least, whatever time there is.
    EXPECT_EQ(readCards(subtitlesText({moment}, {})).size(), 3U);
    for (const double end : {-1e308, std::numeric_limits<double>::quiet_NaN(), -1.0, 0.0}) {
        auto other = moment;
        other.endTime = end;
        EXPECT_EQ(readCards(subtitlesText({other}, {})).size(), 1U) << end;
    }
}

} // namespace
} // namespace zuvo
