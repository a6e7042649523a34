// Answers whose encoding cannot be undone.

#include "platform/Http.h"

#include "fakes/CoroutineTest.h"
#include "fakes/RawServer.h"

#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;

TEST(EncodedAnswer, oneThatCannotBeDecodedIsAFailureAndNotAnEmptyAnswer) {
    RawServer server;
    server.then(answerAndClose(httpAnswer(200, "this is not gzip", {"Content-Encoding: gzip"})));
    HttpRequest request;
    request.url = server.url("/");
    const auto answered = runToEnd(NetworkHttpClient().send(std::move(request)));
    EXPECT_EQ(answered.failure, "The answer could not be unpacked");
}

TEST(EncodedAnswer, aStatusWithoutAnErrorOfItsOwnIsStillAnAnswer) {
    RawServer server;
    server.then(answerAndClose(httpAnswer(418, "teapot")));
    HttpRequest request;
    request.url = server.url("/");
    const auto answered = runToEnd(NetworkHttpClient().send(std::move(request)));
    EXPECT_EQ(answered.status, 418);
    EXPECT_EQ(answered.body, "teapot");
    EXPECT_EQ(answered.failure, "");
}
