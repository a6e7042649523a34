#include "steps/KeySearch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zuvo {
namespace {

using namespace std::string_literals;

constexpr const char* name = "OPENAI_API_KEY";

TEST(KeySearch, aQuotedExportYieldsTheValueInside) {
    EXPECT_EQ(keyInShellFile("export OPENAI_API_KEY=\"abc\"\n", name), "abc");
}

TEST(KeySearch, aMissingClosingQuoteKeepsTheOpeningQuote) {
    EXPECT_EQ(keyInShellFile("export OPENAI_API_KEY=\"abc\n", name), "\"abc");
}

TEST(KeySearch, singleQuotesAreDroppedToo) {
    EXPECT_EQ(keyInShellFile("OPENAI_API_KEY='abc'", name), "abc");
}

TEST(KeySearch, ofTwoDefinitionsInOneFileTheFirstIsUsed) {
    EXPECT_EQ(keyInShellFile("export OPENAI_API_KEY=first\nexport OPENAI_API_KEY=second\n", name), "first");
}

TEST(KeySearch, anEmptyValueDoesNotEndTheSearch) {
    EXPECT_EQ(keyInShellFile("OPENAI_API_KEY=\nOPENAI_API_KEY=\"\"\nOPENAI_API_KEY=late\n", name), "late");
}

TEST(KeySearch, aQuoteCharacterAloneLeavesNothing) {
    EXPECT_EQ(keyInShellFile("OPENAI_API_KEY=\"\nOPENAI_API_KEY='\n", name), std::nullopt);
}

struct Line {
    const char* rule;
    std::string text;
    std::string value;
};

TEST(KeySearch, valuesAreTakenAsTheyStand) {
    const std::vector<Line> lines = {
        {"plain", "OPENAI_API_KEY=sk-1", "sk-1"},
        {"blanks and tabs before", " \t OPENAI_API_KEY=sk-1", "sk-1"},
        {"blanks around the value", "OPENAI_API_KEY=  sk-1 \t", "sk-1"},
        {"no expansion", "export OPENAI_API_KEY=$OTHER", "$OTHER"},
        {"a trailing comment stays", "export OPENAI_API_KEY=sk-1 # mine", "sk-1 # mine"},
        {"a quoted value with a comment keeps its quotes", "export OPENAI_API_KEY=\"a\" # mine", "\"a\" # mine"},
        {"an equals sign in the value", "OPENAI_API_KEY=a=b", "a=b"},
        {"one pair of quotes only", "OPENAI_API_KEY=\"'abc'\"", "'abc'"},
        {"unlike quotes stay", "OPENAI_API_KEY=\"abc'", "\"abc'"},
        {"blanks inside quotes stay", "OPENAI_API_KEY=\" abc \"", " abc "},
        {"a carriage return goes", "export OPENAI_API_KEY=sk-1\r", "sk-1"},
        {"a carriage return behind quotes goes", "export OPENAI_API_KEY='sk-1'\r", "sk-1"},
        {"a no-break space goes", "OPENAI_API_KEY=\u00A0sk-1\u00A0", "sk-1"},
        {"a NUL byte stays", "OPENAI_API_KEY=a\0b"s, "a\0b"s},
    };
    for (const auto& line : lines) {
        EXPECT_EQ(keyInShellFile(line.text, name), line.value) << line.rule;
        EXPECT_EQ(keyInShellFile("# first\r\n" + line.text + "\nlast", name), line.value) << line.rule;
    }
}

TEST(KeySearch, otherLinesDoNotMatch) {
    const std::vector<std::string> lines = {
        "",
        "# export OPENAI_API_KEY=sk-1",
        "export X=1 OPENAI_API_KEY=sk-1",
        "export  OPENAI_API_KEY=sk-1",
        "export\tOPENAI_API_KEY=sk-1",
        "export export OPENAI_API_KEY=sk-1",
        "OPENAI_API_KEY =sk-1",
        "OPENAI_API_KEY",
        "MY_OPENAI_API_KEY=sk-1",
        "OPENAI_API_KEY_2=sk-1",
        "openai_api_key=sk-1",
        "Export OPENAI_API_KEY=sk-1",
        "\rOPENAI_API_KEY=sk-1",
        "\0OPENAI_API_KEY=sk-1"s,
        "\xEF\xBB\xBFOPENAI_API_KEY=sk-1",
    };
    for (const auto& line : lines)
        EXPECT_EQ(keyInShellFile(line, name), std::nullopt) << line;
}

TEST(KeySearch, carriageReturnsAloneEndNoLine) {
    EXPECT_EQ(keyInShellFile("# old\rOPENAI_API_KEY=sk-1\r", name), std::nullopt);
}

TEST(KeySearch, aKeyFileYieldsTheKeyWithoutItsLineEnd) {
    EXPECT_EQ(keyInKeyFile("sk-ant-1\n"), "sk-ant-1");
    EXPECT_EQ(keyInKeyFile("\r\n \t sk-ant-1 \u2028\n\n"), "sk-ant-1");
}

TEST(KeySearch, aKeyFileKeepsWhatStandsInside) {
    EXPECT_EQ(keyInKeyFile("\"one\ntwo\"\n"), "\"one\ntwo\"");
}

TEST(KeySearch, aKeyFileOfWhiteSpaceHoldsNoKey) {
    EXPECT_EQ(keyInKeyFile(""), std::nullopt);
    EXPECT_EQ(keyInKeyFile(" \r\n\t\n"), std::nullopt);
}

} // namespace
} // namespace zuvo
