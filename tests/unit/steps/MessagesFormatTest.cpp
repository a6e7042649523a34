#include "steps/MessagesFormat.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

TEST(MessagesRequestBody, isOneUserMessageWithTheWholePrompt) {
    EXPECT_EQ(messagesRequestBody("Say \"hi\"\n🔊"), R"({"model":"claude-sonnet-4-20250514","max_tokens":8000,)"
                                                    R"("messages":[{"role":"user","content":"Say \"hi\"\n🔊"}]})");
}

TEST(MessagesRequestBody, replacesInvalidUtf8) {
    EXPECT_EQ(messagesRequestBody("a\xFF"
                                  "b"),
              R"({"model":"claude-sonnet-4-20250514","max_tokens":8000,)"
              "\"messages\":[{\"role\":\"user\",\"content\":\"a\uFFFDb\"}]}");
}

TEST(MessagesReplyText, isTheFirstTextBlock) {
    EXPECT_EQ(messagesReplyText(R"({"id":"m","content":[{"type":"thinking","text":"no"},{"type":"text","text":"yes"},)"
                                R"({"type":"text","text":"later"}],"stop_reason":"end_turn"})"),
              "yes");
}

TEST(MessagesReplyText, mayBeEmpty) {
    EXPECT_EQ(messagesReplyText(R"({"content":[{"type":"text","text":""}]})"), "");
}

TEST(MessagesReplyText, laterBlocksAreNotTriedIfTheFirstHasNoText) {
    EXPECT_EQ(messagesReplyText(R"({"content":[{"type":"text"},{"type":"text","text":"later"}]})"), std::nullopt);
    EXPECT_EQ(messagesReplyText(R"({"content":[{"type":"text","text":3},{"type":"text","text":"later"}]})"),
              std::nullopt);
}

TEST(MessagesReplyText, isNothingWithoutATextBlock) {
    for (const char* body : {"", "Bad gateway", "[]", "null", "{}", R"({"content":null})", R"({"content":"text"})",
                             R"({"content":[]})", R"({"content":[{"text":"untyped"}]})",
                             R"({"content":[{"type":"tool_use"}]})", R"({"error":{"type":"text","text":"x"}})"})
        EXPECT_EQ(messagesReplyText(body), std::nullopt) << body;
}

TEST(MessagesReplyText, aListWithOneElementThatIsNoObjectIsNoList) {
    EXPECT_EQ(messagesReplyText(R"({"content":[{"type":"text","text":"yes"},3]})"), std::nullopt);
}

} // namespace
} // namespace zuvo
