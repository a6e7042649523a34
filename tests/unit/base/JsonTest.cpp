#include "base/Json.h"

#include <gmock/gmock.h>

#include <limits>

namespace zuvo {
namespace {

using testing::SizeIs;

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

TEST(ParseForeignJson, readsEveryKindOfValue) {
    const auto json = parseForeignJson(R"( {"a": [1, -2.5, true, null, "é🔊"], "b": {}} )");
    ASSERT_TRUE(json.has_value());
    EXPECT_EQ(json->at("a"), Json::array({1, -2.5, true, nullptr, "é🔊"}));
}

TEST(ParseForeignJson, givesNothingForWhatIsNoJson) {
    for (const char* text : {"", " ", "{", "{}}", "[1,]", "{\"a\":1,}", "nul", "{'a':1}", "[1] x", "// c\n[]", "NaN",
                             "[+1]", "[01]", "[.5]", "[1.]", "\"\n\"", "\"\\x\"", "[Infinity]"})
        EXPECT_EQ(parseForeignJson(text), std::nullopt) << text;
}

TEST(ParseForeignJson, givesNothingForInvalidUtf8) {
    EXPECT_EQ(parseForeignJson("\"\xFF\""), std::nullopt);
    EXPECT_EQ(parseForeignJson("\"\xED\xA0\x80\""), std::nullopt);
    EXPECT_EQ(parseForeignJson(R"("\ud800")"), std::nullopt);
}

TEST(ParseForeignJson, givesNothingForAZeroByte) {
    EXPECT_EQ(parseForeignJson(std::string_view("{}\0", 3)), std::nullopt);
    EXPECT_EQ(parseForeignJson(std::string_view("{}\0 not json", 12)), std::nullopt);
}

TEST(ParseForeignJson, givesNothingForANumberBeyondADouble) {
    EXPECT_EQ(parseForeignJson("[1e999]"), std::nullopt);
    EXPECT_EQ(parseForeignJson("[-1e999]"), std::nullopt);
}

TEST(ParseForeignJson, readsANumberTooSmallForADoubleAsZero) {
    const auto json = parseForeignJson("[1e-999]");
    ASSERT_TRUE(json.has_value());
    EXPECT_EQ(json->at(0).get<double>(), 0.0);
}

TEST(ParseForeignJson, takesTheLastOneOfTheSameKeyTwice) {
    const auto json = parseForeignJson(R"({"a": [1, 2], "b": 0, "a": {"c": 3}})");
    ASSERT_TRUE(json.has_value());
    EXPECT_EQ(json->at("a"), Json({{"c", 3}}));
}

TEST(ParseForeignJson, readsUpToTheDepthLimit) {
    EXPECT_TRUE(parseForeignJson(nested(maximumJsonDepth)).has_value());
    EXPECT_EQ(parseForeignJson(nested(maximumJsonDepth + 1)), std::nullopt);
}

TEST(ParseForeignJson, refusesADepthBomb) {
    EXPECT_EQ(parseForeignJson(nested(2'000'000)), std::nullopt);
    EXPECT_EQ(parseForeignJson(std::string(2'000'000, '[')), std::nullopt);
    std::string objects;
    for (int i = 0; i < 100'000; ++i)
        objects += R"({"a":)";
    EXPECT_EQ(parseForeignJson(objects), std::nullopt);
}

TEST(ParseForeignJson, doesNotCountBracketsInTexts) {
    EXPECT_TRUE(parseForeignJson("[\"" + std::string(500, '[') + "\"]").has_value());
    EXPECT_TRUE(parseForeignJson("[\"\\\"" + std::string(500, '{') + "\"]").has_value());
    EXPECT_TRUE(parseForeignJson("[\"\\\\\", \"" + std::string(500, '[') + "\"]").has_value());
}

TEST(ReadNumber, takesAnyJsonNumberAndNothingElse) {
    const Json object = {{"i", 3}, {"d", 2.5}, {"neg", -1}, {"b", true}, {"t", "3"}, {"n", nullptr}};
    EXPECT_EQ(readNumber(object, "i"), 3.0);
    EXPECT_EQ(readNumber(object, "d"), 2.5);
    EXPECT_EQ(readNumber(object, "neg"), -1.0);
    for (const char* key : {"b", "t", "n", "absent"})
        EXPECT_EQ(readNumber(object, key), std::nullopt) << key;
}

TEST(ReadInteger, takesNumbersWithoutAFraction) {
    const auto object = parseForeignJson(R"({"i": 3, "whole": 3.0, "exp": 1e3, "fraction": 3.7, "b": true, "t": "3",
        "n": null, "max": 9223372036854775807, "min": -9223372036854775808, "over": 9223372036854775808,
        "unsigned": 18446744073709551615, "huge": 1e300, "under": -1e19, "minusZero": -0.0})");
    ASSERT_TRUE(object.has_value());
    EXPECT_EQ(readInteger(*object, "i"), 3);
    EXPECT_EQ(readInteger(*object, "whole"), 3);
    EXPECT_EQ(readInteger(*object, "exp"), 1000);
    EXPECT_EQ(readInteger(*object, "max"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(readInteger(*object, "min"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(readInteger(*object, "minusZero"), 0);
    for (const char* key : {"fraction", "b", "t", "n", "over", "unsigned", "huge", "under", "absent"})
        EXPECT_EQ(readInteger(*object, key), std::nullopt) << key;
}

TEST(ReadText, takesTextsAndNothingElse) {
    const Json object = {{"t", ""}, {"i", 3}, {"n", nullptr}};
    EXPECT_EQ(readText(object, "t"), "");
    for (const char* key : {"i", "n", "absent"})
        EXPECT_EQ(readText(object, key), std::nullopt) << key;
}

TEST(ReadObjects, countsAListWithOneOtherElementAsMissing) {
    const Json object = {{"good", Json::array({Json::object(), {{"a", 1}}})},
                         {"empty", Json::array()},
                         {"mixed", Json::array({Json::object(), 3})},
                         {"null", Json::array({nullptr})},
                         {"object", Json::object()}};
    ASSERT_TRUE(readObjects(object, "good").has_value());
    EXPECT_EQ(*readObjects(object, "good")->at(1), Json({{"a", 1}}));
    EXPECT_THAT(readObjects(object, "empty"), testing::Optional(SizeIs(0)));
    for (const char* key : {"mixed", "null", "object", "absent"})
        EXPECT_EQ(readObjects(object, key), std::nullopt) << key;
}

TEST(LenientReading, givesNothingForWhatIsNoObject) {
    for (const auto& json : {Json(), Json(3), Json("a"), Json::array({1})}) {
        EXPECT_EQ(readNumber(json, "a"), std::nullopt);
        EXPECT_EQ(readInteger(json, "a"), std::nullopt);
        EXPECT_EQ(readText(json, "a"), std::nullopt);
        EXPECT_EQ(readObjects(json, "a"), std::nullopt);
    }
}

TEST(CompactText, keepsTheOrderOfTheKeys) {
    OrderedJson tree;
    tree["z"] = 1;
    tree["a"] = OrderedJson::array({300.0, 0.1, "é\"\n"});
    EXPECT_EQ(compactText(tree), R"({"z":1,"a":[300.0,0.1,"é\"\n"]})");
}

TEST(CompactText, replacesInvalidUtf8) {
    EXPECT_EQ(compactText(OrderedJson("a\xFF"
                                      "b")),
              "\"a\uFFFDb\"");
}

TEST(PrettySortedText, indentsByTwoAndSortsAtEveryLevel) {
    const Json tree = {{"b", {{"d", 1}, {"c", nullptr}}}, {"a", Json::array({1})}};
    EXPECT_EQ(prettySortedText(tree), "{\n  \"a\": [\n    1\n  ],\n  \"b\": {\n    \"c\": null,\n    \"d\": 1\n  }\n}");
}

TEST(Writing, refusesNumbersThatJsonCannotWrite) {
    for (const double value : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()}) {
        OrderedJson ordered;
        ordered["list"] = OrderedJson::array({1, value});
        EXPECT_EQ(compactText(ordered), std::nullopt);
        const Json sorted = {{"object", {{"key", value}}}};
        EXPECT_EQ(prettySortedText(sorted), std::nullopt);
    }
}

TEST(Writing, roundTripsDoublesExactly) {
    for (const double value : {0.1, 33.333333333333336, 1e16, 1e-5, 5e-324, 1.7976931348623157e308, 1.0 / 3.0}) {
        const auto text = compactText(OrderedJson(value));
        ASSERT_TRUE(text.has_value());
        const auto back = parseForeignJson(*text);
        ASSERT_TRUE(back.has_value());
        EXPECT_EQ(back->get<double>(), value) << *text;
    }
}

} // namespace
} // namespace zuvo
