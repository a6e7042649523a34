// A server that does everything wrong in the place of the account service: the sign-in ends in the message that its row
// stands for, without the token, and nobody is signed in.

#include "AuthManagerFixture.h"
#include "base/Secrets.h"
#include "fakes/HostileRows.h"

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;
using testing::Not;

namespace {

/// What a page shows of so many "e": 500 characters, the last of which says that there were more.
std::string cutToAPage(const std::string& text) {
    return text.size() <= 500 ? text : text.substr(0, 499) + "…";
}

std::string messageOf(const HostileOutcome& outcome) {
    if (!outcome.failure.empty())
        return "Network error: " + outcome.failure;
    if (outcome.status >= 200 && outcome.status <= 299)
        return "Failed to parse response: the text is not valid JSON";
    const auto status = std::to_string(outcome.status);
    if (outcome.body == "\xFF\xFE")
        return "Server error " + status + ": Unknown error";
    if (outcome.body.find(repeatedKey) != std::string::npos)
        return "Server error " + status + ": No key: ***.";
    return "Server error " + status + ": " + cutToAPage(outcome.body);
}

class HostileAccount : public AuthManagerTest {};

} // namespace

TEST_F(HostileAccount, eachSignInEndsInTheMessageOfItsRow) {
    for (const auto& row : hostileRows(static_cast<std::size_t>(accountAnswerLimit))) {
        SCOPED_TRACE(row.name);
        RawServer hostile;
        if (row.actsBeforeBody)
            hostile.actBeforeBody();
        hostile.then(row.behaviour);
        make(APIClient(http, addressesAt(hostile.url()), row.timeout()));
        signIn(repeatedKey);
        EXPECT_EQ(manager->errorMessage(), messageOf(row.outcome));
        EXPECT_THAT(manager->errorMessage().value_or(""), Not(HasSubstr(repeatedKey)));
        thenNobodyIsSignedIn();
        EXPECT_FALSE(fileExists());
        EXPECT_EQ(hostile.requests().size(), 1U);
    }
}

TEST_F(HostileAccount, anAnswerOfExactlyAMegabyteIsReadAndOneByteMoreIsNot) {
    const std::string start = R"({"id":"u","name":"Ada","email":"a@example.com","credits":1,"plan":")";
    const std::string end = "\"}";
    const auto most = static_cast<std::size_t>(accountAnswerLimit);
    const std::string whole = start + std::string(most - start.size() - end.size(), 'p') + end;
    ASSERT_EQ(whole.size(), most);
    make();
    server.then(answer(httpAnswer(200, whole)));
    signIn("t");
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_TRUE(manager->isSignedIn());
    server.then(answer(httpAnswer(200, whole + " ")));
    signIn("t");
    EXPECT_EQ(manager->errorMessage(), "Network error: The answer is too long");
}

TEST_F(HostileAccount, twentyMegabytesOfAnErrorAreNotShown) {
    make();
    server.then(answer(httpAnswer(500, std::string(20'000'000, 'e'))));
    signIn("t");
    EXPECT_EQ(manager->errorMessage(), "Network error: The answer is too long");
}
