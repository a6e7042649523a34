#include "standin/Failure.h"

#include <gmock/gmock.h>

using namespace zuvo::standin;
using namespace std::chrono_literals;

namespace {

TEST(FailureOrder, aStatusAfterSomeGoodAnswers) {
    const auto order = parseFailureOrder("transcription:status=429,after=1,count=2,delay=50");
    ASSERT_TRUE(order);
    EXPECT_EQ(order->service, Service::transcription);
    EXPECT_EQ(order->failure.kind, FailureKind::status);
    EXPECT_EQ(order->failure.statusCode, 429);
    EXPECT_EQ(order->failure.delay, 50ms);
    EXPECT_EQ(order->occasion.after, 1);
    EXPECT_EQ(order->occasion.count, 2);
}

TEST(FailureOrder, withoutOptionsAllRequestsFail) {
    const auto order = parseFailureOrder("messages:drop");
    ASSERT_TRUE(order);
    EXPECT_EQ(order->service, Service::messages);
    EXPECT_EQ(order->failure.kind, FailureKind::drop);
    EXPECT_EQ(order->occasion.after, 0);
    EXPECT_EQ(order->occasion.count, Occasion::always);
}

TEST(FailureOrder, everyPartOfTheAccountFailsByItself) {
    const std::pair<const char*, Service> services[] = {{"me", Service::me},         {"version", Service::version},
                                                        {"upload", Service::upload}, {"process", Service::process},
                                                        {"jobs", Service::jobs},     {"archive", Service::archive},
                                                        {"page", Service::page}};
    for (const auto& [text, service] : services) {
        const auto order = parseFailureOrder(std::string(text) + ":status=500");
        ASSERT_TRUE(order) << text;
        EXPECT_EQ(order->service, service) << text;
    }
}

TEST(FailureOrder, textsRunToTheEndCommasIncluded) {
    const auto body = parseFailureOrder("messages:status=500,after=2,body={\"a\":1,\"b\":2}");
    ASSERT_TRUE(body);
    EXPECT_EQ(body->failure.text, "{\"a\":1,\"b\":2}");
    EXPECT_EQ(body->occasion.after, 2);
    const auto reply = parseFailureOrder("messages:reply=one, two");
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->failure.text, "one, two");
}

TEST(FailureOrder, everyKindHasAName) {
    const std::pair<const char*, FailureKind> kinds[] = {{"unauthorized", FailureKind::unauthorized},
                                                         {"redirect=http://a/b", FailureKind::redirect},
                                                         {"notjson", FailureKind::notJson},
                                                         {"shape", FailureKind::wrongShape},
                                                         {"truncated", FailureKind::truncatedJson},
                                                         {"body=x", FailureKind::body},
                                                         {"cut", FailureKind::cut},
                                                         {"stall", FailureKind::stall},
                                                         {"delay=10", FailureKind::delayOnly},
                                                         {"reply=x", FailureKind::replyText}};
    for (const auto& [text, kind] : kinds) {
        const auto order = parseFailureOrder(std::string("messages:") + text);
        ASSERT_TRUE(order) << text;
        EXPECT_EQ(order->failure.kind, kind) << text;
    }
}

TEST(FailureOrder, whatIsNotOfThatFormIsRefused) {
    for (const char* text :
         {"", "messages", "messages:", "post:drop", "messages:explode", "messages:status", "messages:status=abc",
          "messages:status=99", "messages:status=600", "messages:drop=1", "messages:drop,after",
          "messages:drop,after=-1", "messages:drop,after=1x", "messages:drop,body=x", "transcription:reply=x",
          "me:reply=x", "account:drop", "messages:drop,when=1"})
        EXPECT_FALSE(parseFailureOrder(text)) << text;
}

TEST(Occasion, saysWhichRequestsFail) {
    EXPECT_EQ(Occasion::only(2).after, 1);
    EXPECT_EQ(Occasion::only(2).count, 1);
    EXPECT_EQ(Occasion::from(3).after, 2);
    EXPECT_EQ(Occasion::from(3).count, Occasion::always);
    EXPECT_EQ(Occasion::next(4).after, 0);
    EXPECT_EQ(Occasion::next(4).count, 4);
}

} // namespace
