#include "steps/MineVersions.h"

#include <gtest/gtest.h>

#include <limits>

namespace zuvo {
namespace {

TEST(MineVersions, gapsAreNotFilled) {
    EXPECT_EQ(nextMineVersionAmong({"mining_results_v1.json", "mining_results_v7.json"}), 8);
    EXPECT_EQ(nextMineVersionAmong({"mining_results_v7.json", "mining_results_v1.json"}), 8);
}

TEST(MineVersions, aNameWithoutANumberAloneGivesOne) {
    EXPECT_EQ(nextMineVersionAmong({"mining_results_vx.json"}), 1);
}

TEST(MineVersions, noNamesGiveOne) {
    EXPECT_EQ(nextMineVersionAmong({}), 1);
}

TEST(MineVersions, theNewestResultsAndOtherFilesAreNoVersions) {
    EXPECT_EQ(nextMineVersionAmong({"mining_results.json", "project.json", "subtitles.srt"}), 1);
}

TEST(MineVersions, numbersAreComparedAsNumbers) {
    EXPECT_EQ(nextMineVersionAmong({"mining_results_v9.json", "mining_results_v10.json", "mining_results_v2.json"}),
              11);
}

TEST(MineVersions, theLargestNumberDoesNotOverflow) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(mineVersionNumber("mining_results_v9223372036854775807.json"), largest);
    EXPECT_EQ(nextMineVersionAmong({"mining_results_v9223372036854775807.json"}), largest);
}

TEST(MineVersions, aNumberBeyond64BitsIsPassedOver) {
    EXPECT_EQ(nextMineVersionAmong({"mining_results_v9223372036854775808.json", "mining_results_v2.json"}), 3);
}

TEST(MineVersions, theNumberIsTheWholeOfTheMiddle) {
    EXPECT_EQ(mineVersionNumber("mining_results_v3.json"), 3);
    EXPECT_EQ(mineVersionNumber("mining_results_v0.json"), 0);
    EXPECT_EQ(mineVersionNumber("mining_results_v007.json"), 7);
    for (const auto* name :
         {"mining_results_v.json", "mining_results_v1.5.json", "mining_results_v1 .json", "mining_results_v 1.json",
          "mining_results_v0x1.json", "mining_results_v1.json.bak", "mining_results_v1.JSON", "Mining_results_v1.json",
          "a_mining_results_v1.json", "mining_results_v", ".json", ""})
        EXPECT_EQ(mineVersionNumber(name), std::nullopt) << name;
}

} // namespace
} // namespace zuvo
