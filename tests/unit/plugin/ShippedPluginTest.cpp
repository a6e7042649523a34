// The folder "plugin" of the resources, which Resolve loads.

#include "base/Files.h"
#include "base/Json.h"
#include "model/Constants.h"
#include "model/FileLimits.h"
#include "model/PluginVersion.h"
#include "platform/ResourceFolder.h"

#include <gmock/gmock.h>
#include <regex>

using namespace zuvo;

namespace {

std::string shipped(const std::string& name) {
    return readTextFile(ownBuildTree().resources + "/plugin/" + name, FileLimits::store).value_or("missing");
}

} // namespace

TEST(ShippedPlugin, itsVersionIsTheApplicationsPluginVersion) {
    EXPECT_EQ(shipped("version.json"), "{\"version\":\"0.1.0-beta\"}\n");
    const auto decoded = decodeRecordText<PluginVersionFile>(shipped("version.json"));
    ASSERT_TRUE(decoded.value);
    EXPECT_EQ(decoded.value->version, Constants::App::pluginVersion);
}

TEST(ShippedPlugin, itsManifestNamesItWithThatVersion) {
    EXPECT_EQ(shipped("manifest.json"), "{\"name\":\"Zuvo\",\"version\":\"0.1.0-beta\"}\n");
    const auto manifest = parseForeignJson(shipped("manifest.json"));
    ASSERT_TRUE(manifest);
    EXPECT_EQ(readText(*manifest, "version"), Constants::App::pluginVersion);
}

TEST(ShippedPlugin, itsPageHasOneLinkWhichOpensTheApplication) {
    const auto page = shipped("index.html");
    const std::regex link("<a [^>]*href=\"([^\"]*)\"[^>]*>([^<]*)</a>");
    const std::vector<std::smatch> links(std::sregex_iterator(page.begin(), page.end(), link), {});
    ASSERT_EQ(links.size(), 1U);
    EXPECT_EQ(links[0][1], "zuvo-manager://open");
    EXPECT_EQ(links[0][2], "Open Zuvo");
}

TEST(ShippedPlugin, itsPageFetchesNothing) {
    const auto page = shipped("index.html");
    EXPECT_THAT(page, testing::Not(testing::ContainsRegex("src=|url\\(|http|<script|<link")));
}
