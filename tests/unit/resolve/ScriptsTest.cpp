#include "resolve/Scripts.h"

#include "support/GoldenFile.h"

#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* lib = "/resolve/Developer/Scripting/Modules";
constexpr const char* segmentsPath = "/home/é d/Library/Caches/ZuvoManager/segments.json";

/// Every script that takes a name, made with this one.
std::vector<std::optional<std::string>> scriptsWithName(const std::string& name) {
    return {timelineMediaScript(lib, name), timelineClipsScript(lib, name),
            firstBuildScript(lib, name, segmentsPath, {}), finalBuildScript(lib, name, segmentsPath)};
}

std::vector<std::optional<std::string>> unescapedScriptsWithName(const std::string& name) {
    return {audioExportScript(lib, name), emptyTimelineScript(lib, name)};
}

} // namespace

TEST(Scripts, areTheseTextsToTheByte) {
    const std::string name = R"(Day "1" — 川)";
    const std::string plain = "Day 1 — 川";
    expectGolden(projectNameScript(lib), "scripts/project_name.py");
    expectGolden(timelineNamesScript(lib), "scripts/timeline_names.py");
    expectGolden(audioExportScript(lib, plain).value_or(""), "scripts/audio_export_path.py");
    expectGolden(emptyTimelineScript(lib, plain).value_or(""), "scripts/empty_timeline.py");
    expectGolden(timelineMediaScript(lib, name).value_or(""), "scripts/timeline_media.py");
    expectGolden(timelineClipsScript(lib, name).value_or(""), "scripts/timeline_clips.py");
    expectGolden(firstBuildScript(lib, name, segmentsPath, {"/a/b \"c\".wav", "/a/d.wav"}).value_or(""),
                 "scripts/first_build.py");
    expectGolden(finalBuildScript(lib, name, segmentsPath).value_or(""), "scripts/final_build.py");
}

TEST(Scripts, aNameWithADoubleQuoteIsEscaped) {
    for (const auto& script : scriptsWithName(R"(My "Cut")"))
        EXPECT_THAT(script.value_or(""), HasSubstr(R"("My \"Cut\"")"));
}

TEST(Scripts, theFinalBuildHoldsTheNameTwice) {
    const auto script = finalBuildScript(lib, "Zuvo Build — 6:24 AM", segmentsPath).value_or("");
    const auto first = script.find("\"Zuvo Build — 6:24 AM\"");
    ASSERT_NE(first, std::string::npos);
    EXPECT_NE(script.find("\"Zuvo Build — 6:24 AM\"", first + 1), std::string::npos);
}

TEST(Scripts, whatWasFilledInIsNotLookedAtAgain) {
    for (const auto& script : scriptsWithName("__RESOLVE_SCRIPT_LIB__ __SEGMENTS_PATH__"))
        EXPECT_THAT(script.value_or(""), HasSubstr("\"__RESOLVE_SCRIPT_LIB__ __SEGMENTS_PATH__\""));
}

TEST(Scripts, noPlaceholderIsLeft) {
    for (const auto& script : scriptsWithName("Cut")) {
        for (const char* name : {"__RESOLVE_SCRIPT_LIB__", "__TIMELINE_NAME__", "__SEGMENTS_PATH__", "__MEDIA_PATHS__",
                                 "__SUBTITLE_CARDS__"})
            EXPECT_THAT(script.value_or(name), Not(HasSubstr(name)));
    }
}

TEST(Scripts, aNameThatWouldBreakOutOfItsQuotesMakesNoScript) {
    for (const std::string name : {"a\nb", "a\rb", "\n", "a\\", "\\", R"(a\"); import os #)", R"(a\\"b)"}) {
        for (const auto& script : scriptsWithName(name))
            EXPECT_FALSE(script) << name;
    }
    for (const auto& script : scriptsWithName(std::string("a\0b", 3)))
        EXPECT_FALSE(script);
}

TEST(Scripts, aBackslashWithinANameStaysAsItIs) {
    for (const auto& script : scriptsWithName(R"(Reel\new)"))
        EXPECT_THAT(script.value_or(""), HasSubstr(R"("Reel\new")"));
}

TEST(Scripts, aNameThatIsNotEscapedMayHoldNeitherQuoteNorBackslash) {
    for (const std::string name : {R"(My "Cut")", R"(Reel\new)", "a\nb", "a\\"}) {
        for (const auto& script : unescapedScriptsWithName(name))
            EXPECT_FALSE(script) << name;
    }
    for (const auto& script : unescapedScriptsWithName("It's a cut — 川 🎬"))
        EXPECT_THAT(script.value_or(""), HasSubstr("\"It's a cut — 川 🎬\""));
}

TEST(Scripts, aHomeFolderThatWouldBreakOutOfItsQuotesMakesNoBuild) {
    for (const std::string path :
         {R"(/home/"x/segments.json)", R"(/home/x\/segments.json)", "/home/\n/segments.json"}) {
        EXPECT_FALSE(firstBuildScript(lib, "Cut", path, {}));
        EXPECT_FALSE(finalBuildScript(lib, "Cut", path));
    }
    EXPECT_TRUE(finalBuildScript(lib, "Cut", "/home/o'brien/segments.json"));
}

TEST(QuotedPathList, holdsEachPathInSingleQuotesWithinItsText) {
    EXPECT_EQ(quotedPathList({"/a/b.wav", "/a/c.wav"}), R"(["'/a/b.wav'", "'/a/c.wav'"])");
    EXPECT_EQ(quotedPathList({}), "[]");
}

TEST(QuotedPathList, escapesWhatWouldEndTheText) {
    EXPECT_EQ(quotedPathList({R"(/a "b"\c.wav)"}), R"(["'/a \"b\"\\c.wav'"])");
    EXPECT_EQ(quotedPathList({"/it's\n\x7f"
                              "é.wav"}),
              R"(["'/it's\x0a\x7fé.wav'"])");
}
