#include "RecordCases.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

using tests::RecordCase;

class Record : public testing::TestWithParam<RecordCase> {
protected:
    [[nodiscard]] std::optional<std::string> recode(const Json& json) {
        return GetParam().recode(json.dump(), failure);
    }

    [[nodiscard]] bool mayBeAbsent(const std::string& key) const { return GetParam().optionalKeys.contains(key); }

    const Json whole = Json::parse(GetParam().text);
    std::string failure;
};

/// A value of another type than this one, which no reading takes for it.
Json otherTypeThan(const Json& value) {
    return value.is_string() ? Json(3) : Json("3");
}

TEST_P(Record, roundTripsToTheByteWithItsKeysInDeclarationOrder) {
    EXPECT_EQ(GetParam().recode(GetParam().text, failure), GetParam().text) << failure;
}

TEST_P(Record, hasTheseKeysAndNoOthers) {
    std::vector<std::string> keys;
    const auto inOrder = OrderedJson::parse(GetParam().text);
    for (const auto& [key, value] : inOrder.items())
        keys.push_back(key);
    EXPECT_EQ(keys, GetParam().keys);
}

TEST_P(Record, decodesWithoutAnOptionalKeyAndFailsWithoutARequiredOne) {
    for (const auto& key : GetParam().keys) {
        auto json = whole;
        json.erase(key);
        const auto text = recode(json);
        if (mayBeAbsent(key)) {
            ASSERT_TRUE(text.has_value()) << failure;
            EXPECT_EQ(Json::parse(*text), json);
        } else {
            EXPECT_EQ(text, std::nullopt) << key;
            EXPECT_EQ(failure, key + " is missing");
        }
    }
}

TEST_P(Record, readsNullLikeAnAbsentKey) {
    for (const auto& key : GetParam().keys) {
        auto json = whole;
        json[key] = nullptr;
        const auto text = recode(json);
        EXPECT_EQ(text.has_value(), mayBeAbsent(key)) << key;
        if (text) {
            EXPECT_FALSE(Json::parse(*text).contains(key));
        }
    }
}

TEST_P(Record, failsForAKeyOfAnotherType) {
    for (const auto& key : GetParam().keys) {
        auto json = whole;
        json[key] = otherTypeThan(whole.at(key));
        EXPECT_EQ(recode(json), std::nullopt) << key;
        json[key] = Json::array({Json::array()});
        EXPECT_EQ(recode(json), std::nullopt) << key;
    }
}

TEST_P(Record, takesNoTruthForANumberAndNoNumberForTruth) {
    for (const auto& key : GetParam().keys) {
        const auto& value = whole.at(key);
        if (!value.is_number() && !value.is_boolean())
            continue;
        auto json = whole;
        json[key] = value.is_boolean() ? Json(1) : Json(true);
        EXPECT_EQ(recode(json), std::nullopt) << key;
    }
}

TEST_P(Record, passesOverUnknownKeys) {
    auto json = whole;
    json["unknownKey"] = {{"deep", Json::array({nullptr})}};
    json["start_time"] = "snake";
    EXPECT_EQ(recode(json), GetParam().text) << failure;
}

TEST_P(Record, isNoRecordIfItIsNoObject) {
    for (const auto& json : {Json(), Json(3), Json("text"), Json::array({whole})})
        EXPECT_EQ(recode(json), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Model, Record, testing::ValuesIn(tests::recordCases()),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace zuvo
