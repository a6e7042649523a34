// The same footage makes the same files wherever the desktop stands and whatever it speaks.

#include "base/Text.h"
#include "endtoend/MineTest.h"

#include <QDateTime>
#include <filesystem>
#include <map>
#include <regex>

namespace zuvo::endtoend {
namespace {

/// A mine in a world of its own; what it left and said, with the folder and the dates masked.
struct Harvest {
    std::map<std::string, std::string> files;
    std::vector<std::string> log;
    std::string prompt;
    std::string briefDate;
};

class PlaceAndLanguageTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        footage = new tests::TemporaryFolder;
        makeFootage(*footage / "first.wav", 12.34);
        makeFootage(*footage / "second.wav", 12.34);
    }
    static void TearDownTestSuite() { delete footage; }

    static Harvest mineWith(const std::vector<std::pair<std::string, std::string>>& variables) {
        World world;
        for (const auto& [name, value] : variables)
            world.set(name, value);
        world.services.fail(standin::Service::transcription,
                            standin::Failure::body(transcriptionAnswer(climbingLines(), {{0.5, 1.25, "Größe"}})));
        world.services.fail(standin::Service::messages,
                            standin::Failure::reply(storyReply(
                                {{4.5, 11.5, "Größe, 1.234,5 Straßen."}, {16.84, 23.125, "東京 and 0.5."}})));
        const auto ending = world.zuvo({"mine", *footage / "first.wav", *footage / "second.wav", "--minutes", "2.5"});
        EXPECT_EQ(ending.status, 0) << ending.output << ending.errors;
        return harvest(world, ending);
    }

    static inline tests::TemporaryFolder* footage = nullptr;

private:
    static Harvest harvest(const World& world, const Ending& ending) {
        Harvest harvest;
        harvest.log = ending.log();
        const auto request = world.services.requests(standin::Service::messages).at(0);
        harvest.prompt = Json::parse(request.body).at("messages").at(0).at("content");
        const std::regex date(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \+0000)");
        const std::regex created(R"("createdAt":\d+\.\d+)");
        const std::string exports = world.exports("Dropped Files (2)");
        for (const auto& folder : {exports, world.cache()}) {
            for (const auto& name : namesIn(folder)) {
                if (std::filesystem::is_directory(folder + "/" + name))
                    continue;
                auto bytes = replaceAll(bytesOf(folder + "/" + name), world.home(), "HOME");
                std::smatch found;
                if (std::regex_search(bytes, found, date))
                    harvest.briefDate = found.str();
                if (!name.ends_with(".wav"))
                    bytes = std::regex_replace(std::regex_replace(bytes, date, "DATE"), created, "CREATED");
                harvest.files[name] = bytes;
            }
        }
        return harvest;
    }
};

TEST_F(PlaceAndLanguageTest, exportsAreTheSameInEveryPlaceAndLanguage) {
    const auto here = mineWith({});
    ASSERT_EQ(here.files.size(), 13U);
    const std::vector<std::vector<std::pair<std::string, std::string>>> places = {
        {{"LC_ALL", "C"}},
        {{"LC_ALL", "de_DE.UTF-8"}, {"LANG", "de_DE.UTF-8"}},
        {{"LC_ALL", "ar_EG.UTF-8"}, {"TZ", "Pacific/Chatham"}},
    };
    for (const auto& place : places) {
        const auto there = mineWith(place);
        for (const auto& [name, bytes] : here.files)
            EXPECT_TRUE(there.files.at(name) == bytes) << name << " differs under " << place.front().second;
        EXPECT_EQ(there.files.size(), here.files.size());
        EXPECT_EQ(there.log, here.log);
        EXPECT_EQ(there.prompt, here.prompt);
    }
}

TEST_F(PlaceAndLanguageTest, theBriefsDateIsThePresentInUniversalTime) {
    const auto there = mineWith({{"TZ", "Pacific/Chatham"}});
    auto date = QDateTime::fromString(QString::fromStdString(there.briefDate.substr(0, 19)),
                                      QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    date.setTimeSpec(Qt::UTC);
    constexpr qint64 aMineAtMost = 300;
    EXPECT_LE(std::abs(date.secsTo(QDateTime::currentDateTimeUtc())), aMineAtMost) << there.briefDate;
}

} // namespace
} // namespace zuvo::endtoend
