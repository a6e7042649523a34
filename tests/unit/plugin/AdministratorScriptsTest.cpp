#include "plugin/AdministratorScripts.h"

#include "platform/AdministratorShell.h"

#include <gmock/gmock.h>

using namespace zuvo;

namespace {

constexpr const char* pluginPath = "/Library/Application Support/Blackmagic Design/DaVinci Resolve/"
                                   "Workflow Integration Plugins/com.tarnwick.zuvo";

} // namespace

TEST(AdministratorScripts, thePluginIsCopiedIntoItsFolder) {
    EXPECT_EQ(copyScript("/opt/Zuvo/plugin", pluginPath),
              "do shell script \"mkdir -p '/Library/Application Support/Blackmagic Design/DaVinci Resolve/Workflow "
              "Integration Plugins/com.tarnwick.zuvo' && cp -R '/opt/Zuvo/plugin/' '/Library/Application "
              "Support/Blackmagic Design/DaVinci Resolve/Workflow Integration Plugins/com.tarnwick.zuvo'\" with "
              "administrator privileges");
}

TEST(AdministratorScripts, theMinimalPluginHasItsQuotesEscaped) {
    EXPECT_EQ(
        minimalPluginScript("/p", "0.1.0-beta"),
        R"source(do shell script "mkdir -p '/p' && echo '{\"version\":\"0.1.0-beta\"}' > '/p/version.json' && )source"
        R"source(echo '{\"name\":\"Zuvo\",\"version\":\"0.1.0-beta\"}' > '/p/manifest.json'" with )source"
        R"source(administrator privileges)source");
}

TEST(AdministratorScripts, theRemovalNamesThePluginsFolderAlone) {
    EXPECT_EQ(removalScript("/a b/com.tarnwick.zuvo"),
              "do shell script \"rm -rf '/a b/com.tarnwick.zuvo'\" with administrator privileges");
}

TEST(AdministratorScripts, anUpdateTakesThePlaceOfTheOldPlugin) {
    EXPECT_EQ(replacementScript("/plugins/com.tarnwick.zuvo", "/tmp/zuvo-0/zuvo-update/extracted"),
              "do shell script \"rm -rf '/plugins/com.tarnwick.zuvo' && cp -R "
              "'/tmp/zuvo-0/zuvo-update/extracted/com.tarnwick.zuvo' '/plugins'\" with administrator privileges");
}

// What it does is tested by running it: CheckedReplacementTest.cpp.
TEST(AdministratorScripts, aCheckedUpdateEndsWithTheSameLineFromRootsOwnCopy) {
    const auto source = checkedReplacementScript("/plugins/com.tarnwick.zuvo", "/tmp/x y/extracted", "0123abcd");
    EXPECT_EQ(source.find('\n'), std::string::npos);
    const auto line = shellLineOf(source);
    ASSERT_TRUE(line);
    EXPECT_THAT(*line, testing::EndsWith(" && copying=1 && rm -rf '/plugins/com.tarnwick.zuvo' && "
                                         "cp -R './com.tarnwick.zuvo' '/plugins'"));
    EXPECT_THAT(*line, testing::HasSubstr("t=$(mktemp -d '/plugins/.zuvo-update.XXXXXX') && cd \"$t\" && inside=1 && "
                                          "cp -RP '/tmp/x y/extracted/com.tarnwick.zuvo' . && "));
    EXPECT_THAT(*line, testing::HasSubstr("[ \"$(manifest | sort | $h)\" = '0123abcd  -' ]"));
    // PolkitShell changes lines that copy what is in a folder; this one copies folders.
    EXPECT_EQ(withContentsCopied(*line), *line);
}

TEST(AdministratorScripts, theShellSeesTheLineWithoutEscapes) {
    EXPECT_EQ(shellLineOf(minimalPluginScript("/p", "1")),
              "mkdir -p '/p' && echo '{\"version\":\"1\"}' > '/p/version.json' && echo "
              "'{\"name\":\"Zuvo\",\"version\":\"1\"}' > '/p/manifest.json'");
}

TEST(AdministratorScripts, aPathThatWouldEndItsQuotesIsRefused) {
    EXPECT_EQ(pathRefusal("/home/o'brien/plugin"), "The path holds a quote: /home/o'brien/plugin");
    EXPECT_EQ(pathRefusal("/a\"b"), "The path holds a quote: /a\"b");
    EXPECT_EQ(pathRefusal("/a\\"), "The path holds a quote: /a\\");
    EXPECT_EQ(pathRefusal("/a\nb"), "The path holds a quote: /a\uFFFDb");
    EXPECT_EQ(pathRefusal(std::string("/a\0b", 4)), "The path holds a quote: /a\uFFFDb");
    EXPECT_EQ(pathRefusal("/a\x7F"), "The path holds a quote: /a\uFFFD");
}

TEST(AdministratorScripts, allOtherPathsMayStandInAScript) {
    for (const auto* path : {pluginPath, "/é/日本", "/a $HOME `id` ; & | * ? \xE2\x80\x99", "/a//b/"})
        EXPECT_EQ(pathRefusal(path), std::nullopt) << path;
}
