// Mines with marked keys that end in every way there is: the marks reach the two services and are found nowhere else.
// The one exception is the log line that shows the first 12 characters of the model's key.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"
#include "endtoend/ResolveWorlds.h"
#include "endtoend/Secrets.h"
#include "fakes/RawServer.h"

#include <csignal>
#include <filesystem>

namespace zuvo::endtoend {
namespace {

using standin::Failure;
using standin::Occasion;
using standin::Service;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using namespace std::chrono_literals;

// 12 characters that may be shown of the second, and what may not.
const std::string markedOpenaiKey = std::string("openai-key-1") + secretPart + "-openai";
const std::string markedAnthropicKey = std::string("claude-key-2") + secretPart + "-anthropic";
const std::string shownKeyLine = "🔑 API key found (claude-key-2...)";

/// All ways in which one request of a service can end badly.
std::vector<Failure> failuresOf(const std::string& elsewhere) {
    return {Failure::unauthorized(),
            Failure::status(429, "slow down"),
            Failure::status(500, "\xFF\xFE"),
            Failure::redirect(elsewhere),
            Failure::notJson(),
            Failure::wrongShape(),
            Failure::truncatedJson(),
            Failure::drop(),
            Failure::cut()};
}

class KeyLeakTest : public MineTest {
protected:
    std::string file;
    tests::RawServer elsewhere;

    void SetUp() override {
        world.set("OPENAI_API_KEY", markedOpenaiKey);
        world.set("ANTHROPIC_API_KEY", markedAnthropicKey);
        file = givenFootage("talk.wav");
        givenServicesAnswer();
    }

    void givenServicesAnswer() {
        world.services.failNothing();
        givenTranscript();
        givenStory();
    }

    void run(const std::vector<std::string>& words) {
        ending = world.zuvo(words);
        EXPECT_NE(ending.status, -1) << ending.failure;
        thenNothingLeaked();
    }

    /// What the program said, but for the one line that may show the beginning of a key.
    static std::string withoutShownBeginning(std::string said) {
        for (auto at = said.find(shownKeyLine); at != std::string::npos; at = said.find(shownKeyLine))
            said.erase(at, shownKeyLine.size());
        return said;
    }

    static void thenSaysNoKey(const std::string& said) {
        EXPECT_FALSE(holdsSecret(said)) << said;
        const auto rest = withoutShownBeginning(said);
        EXPECT_THAT(rest, Not(HasSubstr("openai-key-1")));
        EXPECT_THAT(rest, Not(HasSubstr("claude-key-2")));
    }

    void thenNothingLeaked() const {
        thenSaysNoKey(ending.output);
        thenSaysNoKey(ending.errors);
        EXPECT_THAT(secretsBelow(world.folder.path(), keyFiles), IsEmpty());
        EXPECT_EQ(elsewhere.receivedBytes(), 0U) << "a redirect was followed";
    }

    /// The same of a run in this process, its tools' command lines included.
    void thenNothingLeaked(const InProcess& inside) const {
        thenSaysNoKey(joined(inside.log()));
        thenSaysNoKey(inside.pipeline->errorMessage().value_or(""));
        thenSaysNoKey(inside.pipeline->buildResult().value_or(""));
        for (const auto& call : inside.processes->calls)
            EXPECT_FALSE(holdsSecret(call.tool + "\n" + joined(call.arguments)));
        EXPECT_THAT(secretsBelow(world.folder.path(), keyFiles), IsEmpty());
        EXPECT_EQ(elsewhere.receivedBytes(), 0U) << "a redirect was followed";
    }

    std::unique_ptr<InProcess> inProcess() const {
        auto inside = std::make_unique<InProcess>(world);
        inside->variables["OPENAI_API_KEY"] = markedOpenaiKey;
        inside->variables["ANTHROPIC_API_KEY"] = markedAnthropicKey;
        return inside;
    }

    /// A shell program that writes its arguments and environment to recorded.txt and goes on as `program`.
    std::string recording(const std::string& program) const {
        const auto path = world.folder.write("recording-" + program.substr(program.rfind('/') + 1),
                                             "#!/bin/sh\n{ printf '%s\\n' \"$@\"; env; } >> '" + recorded() +
                                                 "'\nexec " + program + " \"$@\"\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }
    [[nodiscard]] std::string recorded() const { return world.folder / "recorded.txt"; }

    std::vector<std::string> keyFiles; ///< that the test wrote a key into
};

TEST_F(KeyLeakTest, theSearchFindsAKeyInEveryFormAndPlace) {
    const std::string key = markedOpenaiKey;
    EXPECT_THAT(secretsBelow(world.folder.path()), IsEmpty());
    for (const std::string before : {"", "x", "xy"}) {
        const auto encoded = QByteArray::fromStdString(before + key).toBase64().toStdString();
        EXPECT_TRUE(holdsSecret("Basic " + encoded)) << encoded;
    }
    EXPECT_TRUE(holdsSecret(QByteArray::fromStdString(key).toHex().toStdString()));
    const auto wide = QString::fromStdString(key);
    world.folder.write("home/wide.bin", {reinterpret_cast<const char*>(wide.utf16()), 2 * key.size()});
    world.folder.write("home/" + key + ".txt", "");
    std::filesystem::create_symlink("/" + key, world.folder / "temporary/link");
    EXPECT_EQ(secretsBelow(world.folder.path()).size(), 3U);
    EXPECT_EQ(secretsBelow(world.folder.path(), {world.folder / "home/wide.bin"}).size(), 2U);
}

TEST_F(KeyLeakTest, aMineThatGoesWellTellsItsKeysToTheServicesAlone) {
    run({"mine", file});
    thenItEndsWith(0);
    thenLogHas({shownKeyLine});
    for (const auto& request : world.services.requests(Service::transcription)) {
        EXPECT_EQ(request.header("Authorization"), "Bearer " + markedOpenaiKey);
        EXPECT_FALSE(holdsSecret(request.body));
    }
    const auto asked = world.services.requests(Service::messages).at(0);
    EXPECT_EQ(asked.header("x-api-key"), markedAnthropicKey);
    EXPECT_FALSE(holdsSecret(asked.body));

    run({"mine", file, "--json"});
    thenItEndsWith(0);
    for (const auto& words : std::vector<std::vector<std::string>>{{"keys"},
                                                                   {"projects"},
                                                                   {"projects", "--json"},
                                                                   {"export", "edl", "--project", "talk"},
                                                                   {"mine", "--reload", "talk", "--magic"},
                                                                   {"mine"},
                                                                   {"--help"},
                                                                   {"clear-caches"}})
        run(words);
}

TEST_F(KeyLeakTest, aTranscriptionThatFailsInAnyWayTellsNoKey) {
    for (const auto& failure : failuresOf(elsewhere.url())) {
        SCOPED_TRACE(static_cast<int>(failure.kind));
        world.services.fail(Service::transcription, failure);
        run({"mine", file});
        thenItEndsWith(1);
    }
}

TEST_F(KeyLeakTest, aModelThatFailsInAnyWayTellsNoKey) {
    auto failures = failuresOf(elsewhere.url());
    failures.push_back(Failure::reply("I would rather not."));
    failures.push_back(Failure::reply(R"({"segments": [{"startTime": "x"}]})"));
    for (const auto& failure : failures) {
        SCOPED_TRACE(static_cast<int>(failure.kind));
        world.services.fail(Service::messages, failure);
        run({"mine", file, "--json"});
        thenItEndsWith(1);
    }
}

TEST_F(KeyLeakTest, wordsThatFailInAnyWayTellNoKey) {
    for (const auto& failure : failuresOf(elsewhere.url())) {
        SCOPED_TRACE(static_cast<int>(failure.kind));
        givenServicesAnswer();
        world.services.fail(Service::transcription, failure, Occasion::from(2));
        run({"mine", file});
        thenItEndsWith(0);
    }
}

TEST_F(KeyLeakTest, aKeyThatAServiceRepeatsIsMaskedInEveryLine) {
    const auto repeated = [](const std::string& key) { return R"({"error":"No such key: )" + key + R"("})"; };
    const std::string masked = R"({"error":"No such key: ***"})";
    for (const std::string& form : {std::string(), std::string("--json")}) {
        auto words = std::vector<std::string>{"mine", file};
        if (!form.empty())
            words.push_back(form);
        givenServicesAnswer();
        world.services.fail(Service::transcription, Failure::status(401, repeated(markedOpenaiKey)));
        run(words);
        thenItEndsWith(1);
        EXPECT_THAT(ending.output, HasSubstr("No such key: ***"));
        // Not only its own.
        world.services.fail(Service::transcription, Failure::status(401, repeated(markedAnthropicKey)));
        run(words);
        for (const auto& failure :
             {Failure::status(401, repeated(markedAnthropicKey)), Failure::body(repeated(markedAnthropicKey)),
              Failure::reply("No such key: " + markedAnthropicKey)}) {
            givenServicesAnswer();
            world.services.fail(Service::messages, failure);
            run(words);
            thenItEndsWith(1);
            EXPECT_THAT(ending.output, HasSubstr("No such key: ***"));
        }
    }
    givenServicesAnswer();
    world.services.fail(Service::messages, Failure::status(401, repeated(markedAnthropicKey)));
    run({"mine", file});
    thenLogEndsWith({"  Claude HTTP error: " + masked, "✗ Story analysis failed"});
}

TEST_F(KeyLeakTest, ofAShortKeyTheBeginningIsShownAndNeverAll) {
    for (const std::string key : {"k", "short-key", "twelve-chars"}) {
        world.set("ANTHROPIC_API_KEY", key);
        run({"mine", file});
        thenItEndsWith(0);
        thenLogHas({"🔑 API key found (" + key.substr(0, key.size() / 2) + "...)"});
    }
}

TEST_F(KeyLeakTest, aRefusedAddressTellsNeitherKeyNorPassword) {
    const std::string userAndPassword = std::string("user:") + secretPart + "@";
    for (const std::string& address :
         {std::string("http://service.example/v1"), "https://" + userAndPassword + "host/v1",
          "http://" + userAndPassword + "127.0.0.1:1/v1", "no address " + userAndPassword,
          std::string("https://host/v1?key=") + secretPart}) {
        for (const char* variable : {"OPENAI_BASE_URL", "ANTHROPIC_BASE_URL"}) {
            SCOPED_TRACE(variable + (" " + address));
            world.set("OPENAI_BASE_URL", world.services.transcriptionBase().toStdString());
            world.set("ANTHROPIC_BASE_URL", world.services.messagesBase().toStdString());
            world.set(variable, address);
            run({"mine", file});
            thenItEndsWith(1);
        }
    }
}

TEST_F(KeyLeakTest, aServiceThatIsNotThereTellsNoKey) {
    const auto gone = tests::RawServer().url();
    world.set("OPENAI_BASE_URL", gone + "/v1");
    run({"mine", file});
    thenItEndsWith(1);
    world.set("OPENAI_BASE_URL", world.services.transcriptionBase().toStdString());
    world.set("ANTHROPIC_BASE_URL", gone);
    run({"mine", file});
    thenItEndsWith(1);
}

TEST_F(KeyLeakTest, aKeyThatNoHeaderCanHoldIsNotShownEither) {
    for (const std::string end : {"\r\nX: y", "\n", "\xFF", "é"}) {
        SCOPED_TRACE(end);
        world.set("ANTHROPIC_API_KEY", markedAnthropicKey);
        world.set("OPENAI_API_KEY", markedOpenaiKey + end);
        run({"mine", file});
        world.set("OPENAI_API_KEY", markedOpenaiKey);
        world.set("ANTHROPIC_API_KEY", markedAnthropicKey + end);
        run({"mine", file});
    }
}

TEST_F(KeyLeakTest, foldersThatCannotBeWrittenTellNoKey) {
    world.folder.write("home/Library/Application Support/ZuvoManager", "in the way");
    run({"mine", file});
    thenItEndsWith(1);
    std::filesystem::remove(world.cache("word_timestamps.json"));
    world.folder.write("home/Library/Caches/ZuvoManager/word_timestamps.json/x", "in the way");
    run({"mine", file});
    std::filesystem::remove_all(world.home() + "/Library");
    world.folder.write("home/Library", "in the way");
    run({"mine", file});
    thenItEndsWith(1);
    std::filesystem::remove_all(world.temporary());
    world.folder.write("temporary", "in the way");
    run({"mine", file});
    thenItEndsWith(1);
}

TEST_F(KeyLeakTest, anInterruptedOrKilledMineLeavesNoKeyBehind) {
    const std::vector<std::vector<int>> endings = {{SIGINT, SIGINT}, {SIGTERM, SIGTERM}, {SIGKILL}};
    for (const auto service : {Service::transcription, Service::messages}) {
        givenServicesAnswer();
        world.services.fail(service, Failure::stall());
        for (const auto& signals : endings) {
            const auto before = world.services.requests(service).size();
            const auto running = world.begin({"mine", file, "--json"});
            ASSERT_TRUE(tests::waitUntil([&] { return world.services.requests(service).size() > before; }));
            for (const int signal : signals) {
                running->press(signal);
                tests::runEventLoop(100ms);
            }
            ending = running->end();
            thenNothingLeaked();
        }
    }
}

TEST_F(KeyLeakTest, buildsListsAndAuditsThatFailTellNoKey) {
    // Without Resolve.
    for (const auto& words : std::vector<std::vector<std::string>>{{"timelines"},
                                                                   {"build"},
                                                                   {"build", "--json"},
                                                                   {"mine", "--timeline", "Cut"},
                                                                   {"audit", "--timeline", "Cut", "--mine-first"},
                                                                   {"audit", "--timeline", "Cut"}})
        run(words);

    world.givenResolve(resolveWith("Cut", {clipOf(file, "00:00:12:00")}));
    run({"mine", "--timeline", "Cut"});
    EXPECT_THAT(ending.output, HasSubstr("✓"));
    run({"build"});
    run({"audit", "--timeline", "Missing"});
    for (const auto& failure : failuresOf(elsewhere.url())) {
        SCOPED_TRACE(static_cast<int>(failure.kind));
        givenServicesAnswer();
        world.services.fail(Service::messages, failure, Occasion::from(2));
        run({"audit", "--timeline", "Cut", "--mine-first"});
        thenItEndsWith(1);
    }
}

TEST_F(KeyLeakTest, servicesThatAreSilentTooLongTellNoKey) {
    for (const auto service : {Service::transcription, Service::messages}) {
        const auto inside = inProcess();
        inside->timeouts.transcription = 300ms;
        inside->timeouts.messages = 300ms;
        givenServicesAnswer();
        world.services.fail(service, Failure::stall());
        inside->mine({file});
        EXPECT_EQ(inside->step(), PipelineStep::error);
        thenNothingLeaked(*inside);
    }
    const auto inside = inProcess();
    inside->timeouts.words = 300ms;
    givenServicesAnswer();
    world.services.fail(Service::transcription, Failure::stall(), Occasion::from(2));
    inside->mine({file});
    EXPECT_EQ(inside->step(), PipelineStep::complete);
    thenNothingLeaked(*inside);
}

TEST_F(KeyLeakTest, missingToolsTellNoKey) {
    for (auto ToolPaths::*tool : {&ToolPaths::ffmpeg, &ToolPaths::ffprobe, &ToolPaths::python3}) {
        const auto inside = inProcess();
        inside->platform.environment.tools.*tool = "/nowhere/tool";
        inside->mine({file});
        thenNothingLeaked(*inside);
        tests::runToEnd(inside->pipeline->buildTimelineFromSegmentsFile());
        thenNothingLeaked(*inside);
    }
}

TEST_F(KeyLeakTest, keysOfTheUsersFilesStandOnNoCommandLineAndInNoChildsEnvironment) {
    const auto inside = inProcess();
    inside->variables.erase("OPENAI_API_KEY");
    inside->variables.erase("ANTHROPIC_API_KEY");
    keyFiles = {world.folder.write("home/.zshrc", "export OPENAI_API_KEY='" + markedOpenaiKey + "'\n"),
                world.folder.write("home/.config/anthropic/api_key", markedAnthropicKey + "\n")};
    auto& tools = inside->platform.environment.tools;
    tools.ffmpeg = recording(tools.ffmpeg);
    tools.ffprobe = recording(tools.ffprobe);
    tools.python3 = recording(tools.python3);
    inside->mine({file});
    EXPECT_EQ(inside->step(), PipelineStep::complete);
    tests::runToEnd(inside->pipeline->buildTimelineFromSegmentsFile());

    EXPECT_EQ(world.services.requests(Service::transcription).at(0).header("Authorization"),
              "Bearer " + markedOpenaiKey);
    EXPECT_EQ(world.services.requests(Service::messages).at(0).header("x-api-key"), markedAnthropicKey);
    const auto children = bytesOf(recorded());
    EXPECT_THAT(children, HasSubstr("extracted_audio.wav"));
    EXPECT_THAT(children, HasSubstr("import "));
    thenNothingLeaked(*inside); // recorded.txt lies in the folder that is looked through
}

TEST_F(KeyLeakTest, anAddressThatIsRefusedLeavesTheKeyFilesUnread) {
    const auto inside = inProcess();
    inside->variables.erase("OPENAI_API_KEY");
    std::vector<std::string> asked;
    inside->platform.environment.variable = [&](const std::string& name) -> std::optional<std::string> {
        asked.push_back(name);
        return name == "OPENAI_BASE_URL" ? std::optional<std::string>("http://service.example") : std::nullopt;
    };
    inside->mine({file});
    EXPECT_EQ(inside->step(), PipelineStep::error);
    EXPECT_THAT(asked, Not(testing::Contains("OPENAI_API_KEY")));
    EXPECT_THAT(asked, Not(testing::Contains("ANTHROPIC_API_KEY")));
    thenNothingLeaked(*inside);
}

} // namespace
} // namespace zuvo::endtoend
