#include "standin/StandIn.h"

#include "unit/standin/ReplyEnd.h"
#include "unit/standin/Truth.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpSocket>
#include <QTimer>
#include <QUuid>

using namespace zuvo::standin;
using namespace zuvo::standin::test;
using namespace std::chrono_literals;
using nlohmann::json;

namespace {

struct Reply {
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    int status = 0; ///< 0 if no status line came
    std::string body;
    QByteArray location;
    QByteArray challenge;
};

class StandInOverSockets : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_standIn.knowsSample());
        ASSERT_TRUE(m_standIn.listen());
    }

    /// Sends without a second try: a body that cannot be rewound is not repeated by the client.
    Reply send(const QByteArray& verb, QNetworkRequest request, const std::string& body) {
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        QNetworkReply* reply = m_network.sendCustomRequest(request, verb, QByteArray::fromStdString(body));
        waitForEnd(*reply);
        Reply result{reply->error(), reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
                     reply->readAll().toStdString(), reply->rawHeader("Location"),
                     reply->rawHeader("WWW-Authenticate")};
        reply->deleteLater();
        return result;
    }

    Reply tell(const std::string& prompt, const QByteArray& key = "key") {
        QNetworkRequest request(QUrl(m_standIn.messagesBase() + QStringLiteral("/v1/messages")));
        request.setRawHeader("x-api-key", key);
        request.setRawHeader("anthropic-version", "2023-06-01");
        request.setRawHeader("content-type", "application/json");
        const json body{
            {"model", "a-model"}, {"max_tokens", 8000}, {"messages", {{{"role", "user"}, {"content", prompt}}}}};
        return send("POST", request, body.dump());
    }

    Reply transcribe(const std::string& wav, const std::string& granularity = "segment",
                     const QByteArray& authorization = "Bearer key") {
        const QByteArray boundary = QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toUpper();
        const std::string open = "--" + boundary.toStdString() + "\r\nContent-Disposition: form-data; name=";
        const std::string body = open + "\"model\"\r\n\r\nwhisper-1\r\n" + open +
                                 "\"response_format\"\r\n\r\nverbose_json\r\n" + open +
                                 "\"timestamp_granularities[]\"\r\n\r\n" + granularity + "\r\n" + open +
                                 "\"file\"; filename=\"a.wav\"\r\nContent-Type: audio/wav\r\n\r\n" + wav + "\r\n--" +
                                 boundary.toStdString() + "--\r\n";
        QNetworkRequest request(QUrl(m_standIn.transcriptionBase() + QStringLiteral("/audio/transcriptions")));
        request.setRawHeader("Authorization", authorization);
        request.setRawHeader("Content-Type", "multipart/form-data; boundary=" + boundary);
        return send("POST", request, body);
    }

    [[nodiscard]] std::string storyOf(const Reply& reply) const {
        return json::parse(reply.body).at("content").at(0).at("text").get<std::string>();
    }

    StandIn m_standIn;
    QNetworkAccessManager m_network;
    const std::string m_prompt = "Target edit: 1 min (60s)\n[0.0-9.0s] 🔊 We built a boat.\n";
};

TEST_F(StandInOverSockets, tellsAStoryToAPrompt) {
    const Reply reply = tell(m_prompt);
    EXPECT_EQ(reply.error, QNetworkReply::NoError);
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(json::parse(storyOf(reply)).at("segments").size(), 1U);
}

TEST_F(StandInOverSockets, givesTheWordsOfACutOfTheSampleWithinATenthOfASecond) {
    QTemporaryDir folder;
    const QString joined = joinedSample(folder, StandIn::defaultSampleFolder(), {1, 2});
    const Reply reply = transcribe(bytesOf(cut(folder, joined, 20.0, 8.0)), "word");
    ASSERT_EQ(reply.status, 200) << reply.body;
    const json words = json::parse(reply.body).at("words");
    std::vector<TrueWord> truth;
    const auto files = trueWords(StandIn::defaultSampleFolder());
    for (const TrueWord& word : files.at(0))
        if (word.start >= 20.0 && word.end <= 28.0)
            truth.push_back(word);
    ASSERT_GE(truth.size(), 15U);
    ASSERT_EQ(words.size(), truth.size());
    for (std::size_t index = 0; index < truth.size(); ++index) {
        // words come bare, the truth has their punctuation
        EXPECT_EQ(truth[index].word.rfind(words[index].at("word").get<std::string>(), 0), 0U);
        EXPECT_NEAR(words[index].at("start").get<double>(), truth[index].start - 20.0, 0.1);
        EXPECT_NEAR(words[index].at("end").get<double>(), truth[index].end - 20.0, 0.1);
    }
    EXPECT_EQ(words.at(0).at("word"), "round");
}

TEST_F(StandInOverSockets, takesAFileOfSeveralMegabytes) {
    QTemporaryDir folder;
    const std::string wav = bytesOf(joinedSample(folder, StandIn::defaultSampleFolder(), {1, 2, 1}));
    ASSERT_GT(wav.size(), 6'000'000U);
    const Reply reply = transcribe(wav);
    ASSERT_EQ(reply.status, 200);
    EXPECT_EQ(json::parse(reply.body).at("segments").size(), 33U);
    ASSERT_EQ(m_standIn.requests().size(), 1U);
    EXPECT_NE(m_standIn.requests()[0].body.find(wav), std::string::npos);
}

TEST_F(StandInOverSockets, keepsWhatItWasSent) {
    tell(m_prompt, "made-up-key");
    ASSERT_EQ(m_standIn.requests().size(), 1U);
    const RecordedRequest& request = m_standIn.requests()[0];
    EXPECT_EQ(request.service, Service::messages);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/v1/messages");
    EXPECT_EQ(request.header("X-Api-Key"), "made-up-key");
    EXPECT_EQ(request.header("Anthropic-Version"), "2023-06-01");
    EXPECT_FALSE(request.hasHeader("Cookie"));
    EXPECT_EQ(json::parse(request.body).at("max_tokens"), 8000);
    EXPECT_EQ(request.connection, 1);
}

TEST_F(StandInOverSockets, forgetsWhatItWasSentAndAnswersAllTheSame) {
    QObject::connect(&m_standIn, &StandIn::requestArrived, &m_standIn, &StandIn::forgetRequests);
    EXPECT_EQ(tell(m_prompt).status, 200);
    EXPECT_TRUE(m_standIn.requests().empty());
}

TEST_F(StandInOverSockets, countsConnectionsApartFromRequests) {
    QTcpSocket silent;
    silent.connectToHost(QHostAddress::LocalHost, m_standIn.port());
    ASSERT_TRUE(silent.waitForConnected(5000));
    tell(m_prompt);
    tell(m_prompt);
    EXPECT_EQ(m_standIn.connectionCount(), 2); // the client's second request came over its first connection
    EXPECT_EQ(m_standIn.requests(Service::messages).size(), 2U);
    EXPECT_EQ(m_standIn.requests()[1].connection, m_standIn.requests()[0].connection);
}

TEST_F(StandInOverSockets, listensOnLoopbackAloneAndOncePerPort) {
    EXPECT_TRUE(m_standIn.messagesBase().startsWith(QStringLiteral("http://127.0.0.1:")));
    StandIn second;
    EXPECT_FALSE(second.listen(m_standIn.port()));
}

TEST_F(StandInOverSockets, anUnknownPathIsNotFoundAndKept) {
    const Reply reply = send("POST", QNetworkRequest(QUrl(m_standIn.messagesBase() + QStringLiteral("/v2/x?y=1"))), "");
    EXPECT_EQ(reply.status, 404);
    ASSERT_EQ(m_standIn.requests().size(), 1U);
    EXPECT_EQ(m_standIn.requests()[0].service, Service::none);
    EXPECT_EQ(m_standIn.requests()[0].path, "/v2/x?y=1");
}

TEST_F(StandInOverSockets, anotherMethodIsNotAllowed) {
    EXPECT_EQ(send("GET", QNetworkRequest(QUrl(m_standIn.messagesBase() + QStringLiteral("/v1/messages"))), "").status,
              405);
    EXPECT_EQ(
        send("GET", QNetworkRequest(QUrl(m_standIn.transcriptionBase() + QStringLiteral("/audio/transcriptions"))), "")
            .status,
        405);
}

TEST_F(StandInOverSockets, anEmptyKeyIsUnauthorised) {
    EXPECT_EQ(tell(m_prompt, "").status, 401);
    EXPECT_EQ(transcribe("", "segment", "Bearer ").status, 401);
}

TEST_F(StandInOverSockets, failsWithAStatusAndABodyOfTheTests) {
    m_standIn.fail(Service::messages, Failure::status(529, "Overloaded"));
    const Reply reply = tell(m_prompt);
    EXPECT_EQ(reply.status, 529);
    EXPECT_EQ(reply.body, "Overloaded");
}

TEST_F(StandInOverSockets, failsWithAStatusAndAnErrorObject) {
    m_standIn.fail(Service::transcription, Failure::status(429));
    const Reply reply = transcribe("");
    EXPECT_EQ(reply.status, 429);
    EXPECT_TRUE(json::parse(reply.body).at("error").at("message").is_string());
}

TEST_F(StandInOverSockets, onlyTheSecondRequestOfThatServiceFails) {
    m_standIn.fail(Service::messages, Failure::status(500), Occasion::only(2));
    EXPECT_EQ(tell(m_prompt).status, 200);
    EXPECT_EQ(transcribe("").status, 400); // another service's requests do not count
    EXPECT_EQ(tell(m_prompt).status, 500);
    EXPECT_EQ(tell(m_prompt).status, 200);
}

TEST_F(StandInOverSockets, failsFromANumberOnUntilToldOtherwise) {
    m_standIn.fail(Service::messages, Failure::status(500), Occasion::from(2));
    EXPECT_EQ(tell(m_prompt).status, 200);
    EXPECT_EQ(tell(m_prompt).status, 500);
    EXPECT_EQ(tell(m_prompt).status, 500);
    m_standIn.failNothing();
    EXPECT_EQ(tell(m_prompt).status, 200);
}

TEST_F(StandInOverSockets, theLatestOrderThatCoversARequestDecides) {
    m_standIn.fail(Service::messages, Failure::status(500));
    m_standIn.fail(Service::messages, Failure::status(503), Occasion::next(1));
    EXPECT_EQ(tell(m_prompt).status, 503);
    EXPECT_EQ(tell(m_prompt).status, 500);
}

TEST_F(StandInOverSockets, anAnswerCanBeLate) {
    m_standIn.fail(Service::messages, Failure::late(300ms));
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(tell(m_prompt).status, 200);
    EXPECT_GE(clock.elapsed(), 300);
}

TEST_F(StandInOverSockets, aClientThatGivesUpDuringTheDelayDoesNoHarm) {
    m_standIn.fail(Service::messages, Failure::late(100ms), Occasion::next(1));
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, m_standIn.port());
    ASSERT_TRUE(client.waitForConnected(5000));
    client.write("POST /v1/messages HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n");
    QEventLoop arrival;
    QObject::connect(&m_standIn, &StandIn::requestArrived, &arrival, &QEventLoop::quit);
    QTimer::singleShot(patience, &arrival, &QEventLoop::quit);
    arrival.exec();
    client.abort();
    QEventLoop wait;
    QTimer::singleShot(200ms, &wait, &QEventLoop::quit);
    wait.exec();
    EXPECT_EQ(m_standIn.requests().size(), 1U);
    EXPECT_EQ(tell(m_prompt).status, 200);
}

TEST_F(StandInOverSockets, aBodyCanBeNoJson) {
    m_standIn.fail(Service::messages, Failure::notJson());
    const Reply reply = tell(m_prompt);
    EXPECT_EQ(reply.status, 200);
    EXPECT_FALSE(json::accept(reply.body));
}

TEST_F(StandInOverSockets, aBodyCanBeJsonOfAnotherShape) {
    m_standIn.fail(Service::messages, Failure::wrongShape());
    const Reply reply = tell(m_prompt);
    EXPECT_EQ(reply.status, 200);
    EXPECT_FALSE(json::parse(reply.body).contains("content"));
}

TEST_F(StandInOverSockets, aBodyCanEndInTheMiddleOfItsJson) {
    m_standIn.fail(Service::messages, Failure::truncatedJson());
    const Reply reply = tell(m_prompt);
    EXPECT_EQ(reply.error, QNetworkReply::NoError);
    EXPECT_EQ(reply.status, 200);
    EXPECT_FALSE(json::accept(reply.body));
    EXPECT_EQ(reply.body.rfind("{\"id\"", 0), 0U);
}

TEST_F(StandInOverSockets, aBodyCanBeGivenWhole) {
    m_standIn.fail(Service::transcription, Failure::body("{\"text\":\"x\",\"segments\":[]}"));
    const Reply reply = transcribe("");
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.body, "{\"text\":\"x\",\"segments\":[]}");
}

TEST_F(StandInOverSockets, aReplyTextCanBeGiven) {
    m_standIn.fail(Service::messages, Failure::reply("Sure!\n```json\n{\"segments\":[]}\n```"));
    EXPECT_EQ(storyOf(tell("anything")), "Sure!\n```json\n{\"segments\":[]}\n```");
}

TEST_F(StandInOverSockets, aConnectionCanBeDroppedBeforeAnyByte) {
    m_standIn.fail(Service::messages, Failure::drop());
    const Reply reply = tell(m_prompt);
    EXPECT_EQ(reply.error, QNetworkReply::RemoteHostClosedError);
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.body, "");
}

TEST_F(StandInOverSockets, aConnectionCanBeCutInTheMiddleOfTheBody) {
    m_standIn.fail(Service::messages, Failure::cut());
    const Reply reply = tell(m_prompt);
    EXPECT_EQ(reply.error, QNetworkReply::RemoteHostClosedError);
    EXPECT_EQ(reply.status, 200);
    EXPECT_FALSE(json::accept(reply.body));
}

TEST_F(StandInOverSockets, aStalledAnswerNeverComes) {
    m_standIn.fail(Service::messages, Failure::stall());
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, m_standIn.port());
    ASSERT_TRUE(client.waitForConnected(5000));
    client.write("POST /v1/messages HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n");
    QEventLoop wait;
    QTimer::singleShot(500ms, &wait, &QEventLoop::quit);
    wait.exec();
    EXPECT_EQ(m_standIn.requests().size(), 1U);
    EXPECT_EQ(client.bytesAvailable(), 0);
    EXPECT_EQ(client.state(), QAbstractSocket::ConnectedState);
}

TEST_F(StandInOverSockets, aRedirectNamesItsPlace) {
    m_standIn.fail(Service::messages, Failure::redirect("http://127.0.0.1:1/elsewhere"));
    const Reply reply = tell(m_prompt);
    EXPECT_EQ(reply.status, 302);
    EXPECT_EQ(reply.location, "http://127.0.0.1:1/elsewhere");
}

TEST_F(StandInOverSockets, anUnauthorisedAnswerCarriesAChallenge) {
    m_standIn.fail(Service::transcription, Failure::unauthorized());
    const Reply reply = transcribe("");
    EXPECT_EQ(reply.status, 401);
    EXPECT_EQ(reply.challenge, "Basic realm=\"stand-in\"");
}

TEST_F(StandInOverSockets, everyFailureCanBeLate) {
    m_standIn.fail(Service::messages, Failure::status(500).after(200ms));
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(tell(m_prompt).status, 500);
    EXPECT_GE(clock.elapsed(), 200);
}

} // namespace
