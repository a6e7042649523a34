#pragma once

#include "endtoend/Footage.h"
#include "endtoend/World.h"

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace zuvo::endtoend {

/// A case reads as: givenFootage, mine, thenLogHas.
class MineTest : public testing::Test {
protected:
    World world;
    Ending ending;

    /// Twelve seconds of the climbing sound; gives its path.
    std::string givenFootage(const std::string& name, const std::vector<std::string>& options = {}) {
        makeFootage(world.media(name), 12.0, options);
        return world.media(name);
    }

    /// The service hears these lines in every chunk and these words in every moment.
    void givenTranscript(const std::vector<Line>& lines = climbingLines(),
                         const std::vector<Line>& words = {{0.5, 1.0, "Here"}, {1.0, 1.4, "I"}, {1.4, 2.0, "am"}}) {
        world.services.fail(standin::Service::transcription, standin::Failure::body(transcriptionAnswer(lines, words)));
    }

    /// The model chooses these moments.
    void givenStory(const std::vector<Line>& moments = {{4.5, 11.5, "Here I am, close and clear."}}) {
        world.services.fail(standin::Service::messages, standin::Failure::reply(storyReply(moments)));
    }

    void mine(std::vector<std::string> words) {
        words.insert(words.begin(), "mine");
        ending = world.zuvo(words);
    }

    void thenItEndsWith(int status) const {
        EXPECT_EQ(ending.status, status) << ending.failure << "\n" << ending.output << ending.errors;
    }

    /// These lines follow one another in the log.
    void thenLogHas(const std::vector<std::string>& lines) const {
        EXPECT_THAT("\n" + joined(ending.log()), testing::HasSubstr("\n" + joined(lines)));
    }

    void thenLogEndsWith(const std::vector<std::string>& lines) const {
        EXPECT_THAT("\n" + joined(ending.log()), testing::EndsWith("\n" + joined(lines)));
    }

    void thenLogLacks(const std::string& text) const { EXPECT_THAT(ending.output, Not(testing::HasSubstr(text))); }

    [[nodiscard]] std::size_t transcriptionRequests() const {
        return world.services.requests(standin::Service::transcription).size();
    }
    [[nodiscard]] std::size_t messagesRequests() const {
        return world.services.requests(standin::Service::messages).size();
    }

    /// The prompt of the n-th messages request, counted from 0.
    [[nodiscard]] std::string prompt(std::size_t number = 0) const {
        const auto requests = world.services.requests(standin::Service::messages);
        return Json::parse(requests.at(number).body).at("messages").at(0).at("content");
    }
};

/// The footage "talk.wav" and services that answer a whole mine of it.
class TalkTest : public MineTest {
protected:
    void SetUp() override {
        file = givenFootage("talk.wav");
        givenTranscript();
        givenStory();
    }

    std::string file; ///< its path
};

} // namespace zuvo::endtoend
