#include "cli/Console.h"

#include <cstdlib>
#include <functional>
#include <gmock/gmock.h>

namespace zuvo {
namespace {

/// What a console of that form writes to its stream.
std::string written(ConsoleForm form, const std::function<void(Console&)>& use) {
    char* bytes = nullptr;
    std::size_t length = 0;
    std::FILE* stream = open_memstream(&bytes, &length);
    Console console(form, stream);
    use(console);
    std::fclose(stream);
    const std::string text(bytes, length);
    std::free(bytes);
    return text;
}

PipelineLog line(std::string text, std::string color = LogColor::muted) {
    PipelineLog log;
    log.timestamp = "07:42";
    log.text = std::move(text);
    log.color = std::move(color);
    return log;
}

TEST(Console, colourAndProgressOnlyOnATerminalAndNeverWithNoColor) {
    EXPECT_EQ(consoleForm(false, true, false), ConsoleForm::terminal);
    EXPECT_EQ(consoleForm(false, true, true), ConsoleForm::plain);
    EXPECT_EQ(consoleForm(false, false, false), ConsoleForm::plain);
    EXPECT_EQ(consoleForm(false, false, true), ConsoleForm::plain);
}

TEST(Console, jsonIsJsonEverywhere) {
    for (const bool isTerminal : {false, true}) {
        for (const bool hasNoColor : {false, true})
            EXPECT_EQ(consoleForm(true, isTerminal, hasNoColor), ConsoleForm::json);
    }
}

TEST(Console, thePlainFormIsTheTimeABlankAndTheText) {
    EXPECT_EQ(written(ConsoleForm::plain,
                      [](Console& console) {
                          console.showLog(line("  → a b.wav", LogColor::dim));
                          console.showProgress(0.5, "analyzing", "Analyzing story structure...");
                          console.showLog(line("✓ Complete — we found gems!", LogColor::green));
                          console.showEnd({"complete", false, "/exports/a", "", ""});
                      }),
              "07:42   → a b.wav\n07:42 ✓ Complete — we found gems!\n");
}

TEST(Console, aLineEndWithinALineOfTheLogMakesNoLineOfItsOwn) {
    EXPECT_EQ(written(ConsoleForm::plain,
                      [](Console& console) { console.showLog(line("  → a\n07:42 ✓ Complete\u202E.wav")); }),
              "07:42   → a\n      07:42 ✓ Complete\uFFFD.wav\n");
}

TEST(Console, theTerminalFormKeepsOneLineOfProgressUnderTheLog) {
    EXPECT_EQ(written(ConsoleForm::terminal,
                      [](Console& console) {
                          console.showProgress(0.15, "transcribing", "Transcribing with Whisper...");
                          console.showLog(line("⛏ Transcribing", LogColor::accent));
                          console.showLog(line("plain"));
                          console.showEnd({"error", false, "", "Transcription failed", ""});
                      }),
              "\r\x1b[K15%  Transcribing with Whisper..."
              "\r\x1b[K\x1b[33m07:42 ⛏ Transcribing\x1b[0m\n15%  Transcribing with Whisper..."
              "\r\x1b[K07:42 plain\x1b[0m\n15%  Transcribing with Whisper..."
              "\r\x1b[K");
}

TEST(Console, everyColourOfTheLogHasItsOwn) {
    const auto shown = [](const char* color) {
        return written(ConsoleForm::terminal, [color](Console& console) { console.showLog(line("x", color)); });
    };
    EXPECT_EQ(shown(LogColor::accent), "\r\x1b[K\x1b[33m07:42 x\x1b[0m\n");
    EXPECT_EQ(shown(LogColor::green), "\r\x1b[K\x1b[32m07:42 x\x1b[0m\n");
    EXPECT_EQ(shown(LogColor::dim), "\r\x1b[K\x1b[2m07:42 x\x1b[0m\n");
    EXPECT_EQ(shown(LogColor::muted), "\r\x1b[K07:42 x\x1b[0m\n");
}

TEST(Console, aClearedProgressIsClearedOnce) {
    EXPECT_EQ(written(ConsoleForm::terminal,
                      [](Console& console) {
                          console.clearProgress();
                          console.showProgress(1.0, "complete", "Complete");
                          console.clearProgress();
                          console.clearProgress();
                      }),
              "\r\x1b[K100%  Complete\r\x1b[K");
}

TEST(Console, theJsonFormIsOneObjectALine) {
    EXPECT_EQ(written(ConsoleForm::json,
                      [](Console& console) {
                          console.showProgress(0.02, "connecting", "Connecting to Resolve...");
                          console.showLog(line("  → \"a\"\n", LogColor::dim));
                          console.showEnd({"complete", false, "/exports/a", "", ""});
                      }),
              "{\"event\":\"progress\",\"progress\":0.02,\"step\":\"connecting\"}\n"
              "{\"event\":\"log\",\"time\":\"07:42\",\"text\":\"  → \\\"a\\\"\\n\",\"color\":\"dim\"}\n"
              "{\"event\":\"end\",\"step\":\"complete\",\"interrupted\":false,\"exportDir\":\"/exports/a\"}\n");
}

TEST(Console, theJsonEndOfAFailureHasNoFolderAndTheMessage) {
    EXPECT_EQ(written(ConsoleForm::json,
                      [](Console& console) {
                          console.showEnd({"error", false, "", "Audio extraction failed", ""});
                      }),
              "{\"event\":\"end\",\"step\":\"error\",\"interrupted\":false,\"exportDir\":null,"
              "\"errorMessage\":\"Audio extraction failed\"}\n");
}

TEST(Console, theJsonEndTellsOfAFailedBuild) {
    EXPECT_EQ(written(ConsoleForm::json,
                      [](Console& console) {
                          console.showEnd({"complete", false, "/e", "", "✗ No segments file found"});
                      }),
              "{\"event\":\"end\",\"step\":\"complete\",\"interrupted\":false,\"exportDir\":\"/e\","
              "\"buildResult\":\"✗ No segments file found\"}\n");
}

TEST(Console, jsonEscapesControlCharactersAndReplacesWhatIsNoText) {
    EXPECT_EQ(written(ConsoleForm::json, [](Console& console) { console.showLog(line("\x1b[31m\xFF")); }),
              "{\"event\":\"log\",\"time\":\"07:42\",\"text\":\"\\u001b[31m\uFFFD\",\"color\":\"muted\"}\n");
}

TEST(Console, controlCharactersDoNotReachATerminal) {
    for (const auto form : {ConsoleForm::plain, ConsoleForm::terminal}) {
        EXPECT_THAT(written(form, [](Console& console) { console.showLog(line("\x1b]0;title\a")); }),
                    testing::HasSubstr("07:42 \uFFFD]0;title\uFFFD"));
    }
}

} // namespace
} // namespace zuvo
