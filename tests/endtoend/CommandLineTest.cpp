// The program's manners: exit statuses, forms of output, one mine at a time, refused addresses.

#include "endtoend/MineTest.h"
#include "fakes/CoroutineTest.h"

#include <csignal>
#include <fcntl.h>
#include <map>
#include <unistd.h>

namespace zuvo::endtoend {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using namespace std::chrono_literals;

class CommandLineTest : public MineTest {
protected:
    /// The objects that the run printed, one a line; a line that is none fails the test.
    [[nodiscard]] std::vector<Json> events() const {
        std::vector<Json> objects;
        for (const auto& line : linesOf(ending.output)) {
            objects.push_back(Json::parse(line, nullptr, false));
            EXPECT_TRUE(objects.back().is_object()) << line;
        }
        return objects;
    }

    [[nodiscard]] static std::vector<std::string> steps(const std::vector<Json>& events) {
        std::vector<std::string> names;
        for (const auto& event : events) {
            if (event.at("event") == "progress" && (names.empty() || names.back() != event.at("step")))
                names.push_back(event.at("step"));
        }
        return names;
    }

    /// What the program writes when its standard output is a terminal.
    [[nodiscard]] std::string onATerminal(const std::vector<std::string>& words) const {
        const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
        EXPECT_EQ(::grantpt(terminal) + ::unlockpt(terminal), 0);
        ::fcntl(terminal, F_SETFL, O_NONBLOCK);
        QStringList arguments;
        for (const auto& word : words)
            arguments.append(QString::fromStdString(word));
        QProcess process;
        process.setProcessEnvironment(world.environment);
        process.setStandardInputFile(QProcess::nullDevice());
        process.setStandardOutputFile(QString::fromLatin1(::ptsname(terminal)), QIODevice::Append);
        process.start(QStringLiteral(ZUVO_PROGRAM), arguments);
        std::string shown;
        const auto read = [&] {
            char bytes[4096];
            for (ssize_t count = 0; (count = ::read(terminal, bytes, sizeof bytes)) > 0;)
                shown.append(bytes, static_cast<std::size_t>(count));
            return process.state() == QProcess::NotRunning;
        };
        EXPECT_TRUE(tests::waitUntil(read, 60s));
        read();
        ::close(terminal);
        return shown;
    }
};

TEST_F(CommandLineTest, wrongUsageGoesToStandardErrorAndSaysWhatToWrite) {
    const std::map<std::vector<std::string>, std::string> cases = {
        {{}, "no command given"},
        {{"dig"}, "there is no command \"dig\""},
        {{"mine"}, "zuvo mine takes media files, --timeline NAME or --reload NAME"},
        {{"mine", "a.wav", "--reload", "b"}, "either media files, or --timeline NAME, or --reload NAME"},
        {{"mine", "a.wav", "--minutes", "0"}, "--minutes takes a number above 0, such as 5 or 2.5, not \"0\""},
        {{"mine", "a.wav", "--faster"}, "faster"},
        {{"projects", "delete"}, "write \"zuvo projects\" or \"zuvo projects delete NAME\""},
        {{"clear-caches", "now"}, "zuvo clear-caches takes nothing behind it"},
    };
    for (const auto& [words, message] : cases) {
        ending = world.zuvo(words);
        thenItEndsWith(2);
        EXPECT_EQ(ending.output, "");
        EXPECT_THAT(ending.errors, HasSubstr(message));
    }
    EXPECT_TRUE(namesIn(world.home()).empty()) << "nothing was begun";
}

TEST_F(CommandLineTest, helpAndVersionGoToStandardOutput) {
    for (const auto& words : {std::vector<std::string>{"--help"}, {"help"}, {"mine", "--help"}, {"-h"}}) {
        ending = world.zuvo(words);
        thenItEndsWith(0);
        EXPECT_THAT(ending.output, HasSubstr("zuvo mine FILE... [style options]"));
        EXPECT_EQ(ending.errors, "");
    }
    ending = world.zuvo({"--version"});
    thenItEndsWith(0);
    EXPECT_THAT(ending.output, testing::MatchesRegex("zuvo [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(CommandLineTest, keysAreTestedAndNotShown) {
    ending = world.zuvo({"keys"});
    thenItEndsWith(0);
    EXPECT_EQ(ending.output, "OPENAI_API_KEY: found\nANTHROPIC_API_KEY: found\n");
    world.set("OPENAI_API_KEY", "");
    ending = world.zuvo({"keys"});
    thenItEndsWith(1);
    EXPECT_EQ(ending.output, "OPENAI_API_KEY: missing\nANTHROPIC_API_KEY: found\n");
}

TEST_F(CommandLineTest, aTimelineCannotBeFoundWithoutResolve) {
    mine({"--timeline", "Rough cut"});
    thenItEndsWith(1);
    EXPECT_EQ(joined(ending.log()), "$ zuvo mine --mode full-mine\nConnecting to DaVinci Resolve...\n"
                                    "✗ Could not find source media for timeline 'Rough cut'\n");
}

TEST_F(CommandLineTest, theModeStandsInTheFirstLineAlone) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("talk.wav");
    std::vector<std::string> logs;
    for (const std::string mode : {"full-mine", "story-mine", "structure"}) {
        mine({file, "--mode", mode});
        thenItEndsWith(0);
        auto log = ending.log();
        EXPECT_EQ(log.at(0), "$ zuvo mine --files 1 --mode " + mode);
        log.erase(log.begin());
        logs.push_back(joined(log));
    }
    EXPECT_EQ(logs[1], logs[0]);
    EXPECT_EQ(logs[2], logs[0]);
}

TEST_F(CommandLineTest, slidersStandOnTopOfThePresetInWhateverOrder) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("talk.wav");
    mine({"--slider", "pace=0.9", file, "--preset", "campfire", "--slider", "silence=0"});
    mine({"--preset", "campfire", "--slider", "silence=0", "--slider", "pace=0.9", file});
    const std::string style = "STYLE: Base style: Campfire — Meditative, slow burn, poetic\nFast-paced, energetic\n"
                              "Balanced structure\nModerate emotion\nExtended, breathing room\n"
                              "Conservative, safe choices\nFill gaps, keep moving\n\n";
    EXPECT_THAT(prompt(0), HasSubstr(style));
    EXPECT_EQ(prompt(1), prompt(0));
}

TEST_F(CommandLineTest, jsonIsOneObjectALineUpToTheEnd) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("talk.wav");
    mine({file, "--json"});
    thenItEndsWith(0);
    const auto all = events();
    EXPECT_THAT(steps(all), testing::ElementsAre("connecting", "extracting", "chunking", "transcribing", "analyzing",
                                                 "translating", "building", "complete"));
    double progress = 0.0;
    std::vector<std::string> log;
    for (const auto& event : all) {
        if (event.at("event") == "progress") {
            EXPECT_GE(event.at("progress").get<double>(), progress);
            progress = event.at("progress");
        } else if (event.at("event") == "log") {
            EXPECT_THAT(event.at("time").get<std::string>(), testing::MatchesRegex("[0-9]{2}:[0-9]{2}"));
            log.push_back(event.at("text"));
        }
    }
    EXPECT_EQ(progress, 1.0);
    EXPECT_EQ(log.front(), "$ zuvo mine --files 1 --mode full-mine");
    EXPECT_EQ(log.back(), "✓ Complete — we found gems!");
    EXPECT_EQ(
        all.back(),
        (Json{{"event", "end"}, {"step", "complete"}, {"interrupted", false}, {"exportDir", world.exports("talk")}}));
}

TEST_F(CommandLineTest, jsonOfAFailureEndsWithItsMessageAndNoFolder) {
    mine({world.media("gone.wav"), "--json"});
    thenItEndsWith(1);
    EXPECT_EQ(events().back(), (Json{{"event", "end"},
                                     {"step", "error"},
                                     {"interrupted", false},
                                     {"exportDir", nullptr},
                                     {"errorMessage", "Audio extraction failed"}}));
}

TEST_F(CommandLineTest, aTerminalGetsColourAndALineOfProgress) {
    const auto shown = onATerminal({"mine", world.media("gone.wav")});
    EXPECT_THAT(shown, AllOf(HasSubstr("\x1b[33m"), HasSubstr("✗ Audio extraction failed\x1b[0m"),
                             HasSubstr("2%  Connecting to Resolve..."), HasSubstr("5%  Extracting audio...")));
    EXPECT_THAT(shown, testing::EndsWith("\r\x1b[K")) << "the line of progress is taken away at the end";
}

TEST_F(CommandLineTest, aTerminalWithNoColorGetsPlainLines) {
    world.set("NO_COLOR", "1");
    const auto shown = onATerminal({"mine", world.media("gone.wav")});
    EXPECT_THAT(shown, AllOf(HasSubstr("✗ Audio extraction failed"), Not(HasSubstr("\x1b")), Not(HasSubstr("%"))));
}

TEST_F(CommandLineTest, aBaseAddressInTheClearIsRefusedBeforeAnyRequest) {
    const auto file = givenFootage("talk.wav");
    for (const std::string variable : {"OPENAI_BASE_URL", "ANTHROPIC_BASE_URL"}) {
        World other;
        other.set(variable, "http://203.0.113.7");
        const auto refused = other.zuvo({"mine", file});
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.output, "");
        EXPECT_EQ(refused.errors, "zuvo: " + variable +
                                      " must be https, or http to this machine or a private network: "
                                      "http://203.0.113.7\n");
        EXPECT_TRUE(other.services.requests().empty());
        EXPECT_TRUE(namesIn(other.home()).empty());
    }
}

TEST_F(CommandLineTest, theModelsAddressMayEndInItsVersion) {
    givenTranscript();
    givenStory();
    world.set("ANTHROPIC_BASE_URL", world.services.messagesBase().toStdString() + "/v1/");
    world.set("OPENAI_BASE_URL", world.services.transcriptionBase().toStdString() + "//");
    mine({givenFootage("talk.wav")});
    thenItEndsWith(0);
    EXPECT_EQ(world.services.requests().front().path, "/v1/audio/transcriptions");
    EXPECT_EQ(world.services.requests(standin::Service::messages).front().path, "/v1/messages");
}

TEST_F(CommandLineTest, aSecondMineUnderTheSameHomeIsRefusedWhileOneRuns) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("talk.wav");
    world.services.fail(standin::Service::messages,
                        standin::Failure::reply(storyReply({{4.5, 11.5, "Late."}})).after(1500ms));
    const auto first = world.begin({"mine", file});
    ASSERT_TRUE(tests::waitUntil([this] { return messagesRequests() == 1; }));
    // Another folder for temporary files is no way round it: the lock is where the caches are.
    world.set("TMPDIR", world.folder.makeFolder("other temporary"));
    for (const auto& words : {std::vector<std::string>{"mine", file}, {"clear-caches"}, {"build"}}) {
        const auto second = world.zuvo(words);
        EXPECT_EQ(second.status, 1);
        EXPECT_EQ(second.output, "");
        EXPECT_EQ(second.errors, "zuvo: Another mine is running (zuvo, process " + std::to_string(first->processId()) +
                                     "). Wait for it to end, then try again.\n");
    }
    EXPECT_EQ(first->end().status, 0);
    EXPECT_EQ(messagesRequests(), 1U);
    EXPECT_EQ(jsonOf(world.cache("segments.json")).at(0).at("transcript"), "Late.");
}

TEST_F(CommandLineTest, aMineThatWasKilledHoldsNobodyUp) {
    givenTranscript();
    givenStory();
    const auto file = givenFootage("talk.wav");
    world.services.fail(standin::Service::transcription, standin::Failure::stall(), standin::Occasion::next(1));
    const auto first = world.begin({"mine", file});
    ASSERT_TRUE(tests::waitUntil([this] { return transcriptionRequests() == 1; }));
    first->press(SIGKILL);
    EXPECT_EQ(first->end().status, -1);
    mine({file});
    thenItEndsWith(0);
}

} // namespace
} // namespace zuvo::endtoend
