// The folder "plugin" of the resources, which Resolve loads.

#include "base/Files.h"
#include "base/Json.h"
#include "model/Constants.h"
#include "model/FileLimits.h"
#include "model/PluginVersion.h"
#include "platform/ResourceFolder.h"

#include <QString>
#include <QXmlStreamReader>
#include <gmock/gmock.h>
#include <map>
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

TEST(ShippedPlugin, resolveFindsItByItsManifestAndStartsTheFileThatIsThere) {
    QXmlStreamReader xml(QString::fromStdString(shipped("manifest.xml")));
    ASSERT_TRUE(xml.readNextStartElement());
    EXPECT_EQ(xml.name(), QStringLiteral("BlackmagicDesign"));
    ASSERT_TRUE(xml.readNextStartElement());
    EXPECT_EQ(xml.name(), QStringLiteral("Plugin"));
    std::map<std::string, std::string> fields;
    while (xml.readNextStartElement()) {
        const auto name = xml.name().toString().toStdString();
        fields[name] = xml.readElementText().toStdString();
    }
    EXPECT_FALSE(xml.hasError());
    const std::string folder = Constants::Paths::pluginDirectory;
    EXPECT_EQ(fields["Id"], folder.substr(folder.find_last_of('/') + 1));
    EXPECT_EQ(fields["Name"], "Zuvo");
    EXPECT_EQ(fields["Version"], Constants::App::pluginVersion);
    EXPECT_EQ(fields["FilePath"], "main.js");
    EXPECT_EQ(fields.size(), 5U); // and a description
    EXPECT_NE(shipped("main.js"), "missing");
}

TEST(ShippedPlugin, electronFindsTheSameFileByThePackage) {
    const auto package = parseForeignJson(shipped("package.json"));
    ASSERT_TRUE(package);
    EXPECT_EQ(readText(*package, "name"), "com.tarnwick.zuvo");
    EXPECT_EQ(readText(*package, "version"), Constants::App::pluginVersion);
    EXPECT_EQ(readText(*package, "main"), "main.js");
}

TEST(ShippedPlugin, itNeedsNoModuleBesideElectronsOwn) {
    const auto program = shipped("main.js");
    const std::regex required("require\\('([^']*)'\\)");
    std::vector<std::string> modules;
    for (std::sregex_iterator match(program.begin(), program.end(), required), end; match != end; ++match)
        modules.push_back((*match)[1]);
    EXPECT_THAT(modules, testing::ElementsAre("path", "electron"));
}
