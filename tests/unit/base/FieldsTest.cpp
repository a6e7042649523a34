#include "base/Fields.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

struct Inner {
    double number = 0.0;
    std::optional<std::string> note;

    static constexpr auto fields() { return std::tuple(Field{"number", &Inner::number}, Field{"note", &Inner::note}); }
};

struct Outer {
    std::string text;
    std::int64_t integer = 0;
    bool flag = false;
    std::vector<Inner> list;
    std::optional<Inner> inner;

    static constexpr auto fields() {
        using S = Outer;
        return std::tuple(Field{"text", &S::text}, Field{"integer", &S::integer}, Field{"flag", &S::flag},
                          Field{"list", &S::list}, Field{"inner", &S::inner});
    }
};

constexpr const char* whole =
    R"({"text":"a","integer":3,"flag":true,"list":[{"number":1.5,"note":"n"},{"number":2.0}],"inner":{"number":0.5}})";

std::string failureOf(const std::string& text) {
    const auto decoded = decodeRecordText<Outer>(text);
    EXPECT_FALSE(decoded.value.has_value());
    return decoded.failure;
}

TEST(StrictFields, roundTripToTheByte) {
    const auto decoded = decodeRecordText<Outer>(whole);
    ASSERT_TRUE(decoded.value.has_value()) << decoded.failure;
    EXPECT_EQ(decoded.failure, "");
    EXPECT_EQ(compactText(encodeRecord(*decoded.value)), whole);
}

TEST(StrictFields, writeInDeclarationOrderAndLeaveOutEmptyOptionals) {
    const Outer record{"t", 1, false, {}, std::nullopt};
    EXPECT_EQ(compactText(encodeRecord(record)), R"({"text":"t","integer":1,"flag":false,"list":[]})");
    EXPECT_EQ(compactText(encodeRecord(std::vector<Outer>{record})),
              R"([{"text":"t","integer":1,"flag":false,"list":[]}])");
}

TEST(StrictFields, passOverUnknownKeys) {
    EXPECT_TRUE(decodeRecordText<Inner>(R"({"number": 1, "extra": {"deep": []}})").value.has_value());
}

TEST(StrictFields, takeAnyNumberForADouble) {
    EXPECT_EQ(decodeRecordText<Inner>(R"({"number": 3})").value->number, 3.0);
    EXPECT_EQ(decodeRecordText<Inner>(R"({"number": -1e2})").value->number, -100.0);
}

TEST(StrictFields, takeANumberWithoutAFractionForAnInteger) {
    const auto decoded = decodeRecordText<Outer>(R"({"text": "", "integer": 3.0, "flag": false, "list": []})");
    ASSERT_TRUE(decoded.value.has_value());
    EXPECT_EQ(decoded.value->integer, 3);
}

TEST(StrictFields, readNullAndAbsenceOfAnOptionalAsNothing) {
    EXPECT_EQ(decodeRecordText<Inner>(R"({"number": 1, "note": null})").value->note, std::nullopt);
    EXPECT_EQ(decodeRecordText<Inner>(R"({"number": 1})").value->note, std::nullopt);
    EXPECT_EQ(decodeRecordText<Inner>(R"({"number": 1, "note": ""})").value->note, "");
}

TEST(StrictFields, takeTheLastOfTheSameKeyTwice) {
    EXPECT_EQ(decodeRecordText<Inner>(R"({"number": 1, "number": 2})").value->number, 2.0);
}

TEST(StrictFields, sayWhatIsMissingAndWhere) {
    EXPECT_EQ(failureOf("{}"), "text is missing");
    EXPECT_EQ(failureOf(R"({"text": null})"), "text is missing");
    EXPECT_EQ(failureOf(R"({"text": "", "integer": 1, "flag": true, "list": [{"number": 1}, {}]})"),
              "list[1].number is missing");
    EXPECT_EQ(failureOf(R"({"text": "", "integer": 1, "flag": true, "list": [], "inner": {}})"),
              "inner.number is missing");
}

TEST(StrictFields, sayWhatHasTheWrongType) {
    EXPECT_EQ(failureOf("[]"), "the top level is not an object");
    EXPECT_EQ(failureOf(R"({"text": 1})"), "text is not a text");
    EXPECT_EQ(failureOf(R"({"text": "", "integer": 3.5})"), "integer is not an integer");
    EXPECT_EQ(failureOf(R"({"text": "", "integer": true})"), "integer is not an integer");
    EXPECT_EQ(failureOf(R"({"text": "", "integer": 1, "flag": 1})"), "flag is not true or false");
    EXPECT_EQ(failureOf(R"({"text": "", "integer": 1, "flag": true, "list": {}})"), "list is not a list");
    EXPECT_EQ(failureOf(R"({"text": "", "integer": 1, "flag": true, "list": [3]})"), "list[0] is not an object");
    EXPECT_EQ(failureOf(R"({"text": "", "integer": 1, "flag": true, "list": [{"number": true}]})"),
              "list[0].number is not a number");
    EXPECT_EQ(failureOf(R"({"text": "", "integer": 1, "flag": true, "list": [{"number": 1, "note": 2}]})"),
              "list[0].note is not a text");
}

TEST(StrictFields, sayThatATextIsNoJson) {
    EXPECT_EQ(failureOf("{"), "the text is not valid JSON");
    EXPECT_EQ(failureOf(""), "the text is not valid JSON");
}

} // namespace
} // namespace zuvo
