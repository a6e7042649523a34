#include "standin/StandIn.h"

#include "unit/standin/ReplyEnd.h"
#include "unit/standin/Truth.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QRegularExpression>

using namespace zuvo;
using namespace zuvo::standin;
using namespace zuvo::standin::test;
using namespace std::chrono_literals;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

namespace {

struct Reply {
    int status = 0; ///< 0 if no status line came
    std::string body;
    QByteArray contentType;

    [[nodiscard]] json tree() const { return json::parse(body, nullptr, false); }
};

class AccountOverSockets : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_standIn.listen()); }

    Reply send(const QByteArray& verb, const QString& path, const std::string& body = {},
               const QByteArray& authorization = "Bearer zuvo_abc",
               const QByteArray& contentType = "application/json") {
        QNetworkRequest request(QUrl(m_standIn.accountBase() + path));
        request.setRawHeader("Content-Type", contentType);
        if (!authorization.isEmpty())
            request.setRawHeader("Authorization", authorization);
        QNetworkReply* reply = m_network.sendCustomRequest(request, verb, QByteArray::fromStdString(body));
        waitForEnd(*reply);
        Reply result{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll().toStdString(),
                     reply->rawHeader("Content-Type")};
        reply->deleteLater();
        return result;
    }

    Reply get(const QString& path, const QByteArray& authorization = "Bearer zuvo_abc") {
        return send("GET", path, {}, authorization);
    }

    Reply me(const QByteArray& authorization = "Bearer zuvo_abc") {
        return get(QStringLiteral("/api/v1/me"), authorization);
    }
    Reply version() { return get(QStringLiteral("/api/v1/version"), {}); }
    Reply poll(const std::string& jobId) {
        return get(QStringLiteral("/api/v1/api/v1/jobs/") + QString::fromStdString(jobId));
    }

    Reply upload(const std::string& file, const QByteArray& authorization = "Bearer zuvo_abc") {
        const std::string body = "--edge\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a.wav\"\r\n"
                                 "Content-Type: audio/wav\r\n\r\n" +
                                 file + "\r\n--edge--\r\n";
        return send("POST", QStringLiteral("/api/v1/api/v1/upload"), body, authorization,
                    "multipart/form-data; boundary=edge");
    }

    Reply process(const std::string& jobId, const std::string& mode = "Full Mine") {
        return send("POST", QStringLiteral("/api/v1/api/v1/process"), json{{"jobId", jobId}, {"mode", mode}}.dump());
    }

    /// Uploads and starts; the job's name.
    std::string startJob(const std::string& file) {
        const std::string jobId = upload(file).tree().value("jobId", "");
        EXPECT_NE(jobId, "");
        EXPECT_EQ(process(jobId).status, 200);
        return jobId;
    }

    StandIn m_standIn;
    QNetworkAccessManager m_network;
};

TEST_F(AccountOverSockets, anyTokenThatBeginsAsItsOwnIsSomebodys) {
    const Reply reply = me("Bearer zuvo_whatever");
    EXPECT_EQ(reply.status, 200);
    const json user = reply.tree();
    EXPECT_EQ(user.size(), 5U);
    for (const char* key : {"id", "name", "email", "plan"})
        EXPECT_TRUE(user.at(key).is_string()) << key;
    EXPECT_TRUE(user.at("credits").is_number_integer());
}

TEST_F(AccountOverSockets, anotherTokenOrNoneIsRefused) {
    for (const char* authorization : {"", "Bearer ", "Bearer abc", "Bearer xzuvo_abc", "zuvo_abc"}) {
        const Reply reply = me(authorization);
        EXPECT_EQ(reply.status, 401) << authorization;
        EXPECT_TRUE(reply.tree().at("error").is_string()) << authorization;
    }
}

TEST_F(AccountOverSockets, theAccountCanBeSet) {
    m_standIn.setAccount({"7", "Ada \"A\" Müller", "ada@example.com", -3, "Free"});
    EXPECT_EQ(me().tree(), json::parse(R"({"id":"7","name":"Ada \"A\" Müller","email":"ada@example.com","credits":-3,
                                           "plan":"Free"})"));
}

TEST_F(AccountOverSockets, theVersionNamesAnArchiveThatIsThere) {
    const json tree = version().tree();
    EXPECT_EQ(tree.at("version"), "0.2.0");
    EXPECT_EQ(tree.at("download_url"), m_standIn.accountBase().toStdString() + "/downloads/zuvo-plugin.zip");
    EXPECT_TRUE(tree.at("release_notes").is_string());
    EXPECT_FALSE(m_standIn.requests(Service::version).empty());
    EXPECT_FALSE(m_standIn.requests(Service::version)[0].hasHeader("Authorization"));
}

TEST_F(AccountOverSockets, aVersionCanBeSetWithoutDownloadAndNotes) {
    m_standIn.setVersion({"0.1.0", {}, {}});
    EXPECT_EQ(version().tree(), json::parse(R"({"version":"0.1.0"})"));
}

TEST_F(AccountOverSockets, theArchiveUnpacksIntoThePluginsFolder) {
    const Reply reply = get(QStringLiteral("/downloads/zuvo-plugin.zip"), {});
    ASSERT_EQ(reply.status, 200);
    EXPECT_EQ(reply.contentType, "application/zip");
    QTemporaryDir folder;
    QFile zip(folder.filePath(QStringLiteral("a.zip")));
    ASSERT_TRUE(zip.open(QIODevice::WriteOnly));
    zip.write(QByteArray::fromStdString(reply.body));
    zip.close();
    ASSERT_EQ(QProcess::execute(QStringLiteral("unzip"), {QStringLiteral("-q"), zip.fileName(), QStringLiteral("-d"),
                                                          folder.filePath(QStringLiteral("out"))}),
              0);
    EXPECT_EQ(QDir(folder.filePath(QStringLiteral("out"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList(QStringLiteral("com.tarnwick.zuvo")));
    const QString plugin = folder.filePath(QStringLiteral("out/com.tarnwick.zuvo/"));
    EXPECT_EQ(json::parse(bytesOf(plugin + QStringLiteral("version.json"))), json::parse(R"({"version":"0.2.0"})"));
    EXPECT_EQ(json::parse(bytesOf(plugin + QStringLiteral("manifest.json"))),
              json::parse(R"({"name":"Zuvo","version":"0.2.0"})"));
    EXPECT_THAT(bytesOf(plugin + QStringLiteral("index.html")), HasSubstr("0.2.0"));
}

TEST_F(AccountOverSockets, theArchiveCanBeAnyBytes) {
    const std::string bytes("PK\0broken", 9);
    m_standIn.setArchive(bytes);
    EXPECT_EQ(get(QStringLiteral("/downloads/zuvo-plugin.zip"), {}).body, bytes);
}

TEST_F(AccountOverSockets, theSignInPageLeadsBackWithANewTokenThatIsAccepted) {
    const QRegularExpression link(QStringLiteral("<a href=\"zuvo-manager://callback\\?token=(zuvo_[0-9a-f]{32})\">"));
    QStringList tokens;
    for (const QString& callback :
         {QStringLiteral("zuvo-manager://callback"), QStringLiteral("zuvo-manager%3A%2F%2Fcallback")}) {
        const Reply reply = get(QStringLiteral("/plugin-auth?callback=") + callback, {});
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(reply.contentType, "text/html; charset=utf-8");
        tokens += link.match(QString::fromStdString(reply.body)).captured(1);
        EXPECT_EQ(me("Bearer " + tokens.back().toLatin1()).status, 200);
    }
    EXPECT_NE(tokens[0], tokens[1]);
}

TEST_F(AccountOverSockets, theSignInPageLeadsNowhereElse) {
    for (const char* query : {"", "?callback=", "?callback=https://example.com", "?callback=zuvo-manager://callback/x",
                              "?callback=zuvo-manager://callback%22onclick=%22", "?other=zuvo-manager://callback"}) {
        const Reply reply = get(QStringLiteral("/plugin-auth") + QString::fromLatin1(query), {});
        EXPECT_EQ(reply.status, 400) << query;
        EXPECT_THAT(reply.body, Not(HasSubstr("token="))) << query;
    }
}

TEST_F(AccountOverSockets, thereIsABillingPage) {
    const Reply reply = get(QStringLiteral("/billing"), {});
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.contentType, "text/html; charset=utf-8");
}

TEST_F(AccountOverSockets, aJobGoesThroughItsStagesAndEndsWithAStoryOfTheSound) {
    QTemporaryDir folder;
    const std::string jobId = startJob(bytesOf(joinedSample(folder, StandIn::defaultSampleFolder(), {1, 2})));
    const std::pair<const char*, double> stages[] = {{"transcribing", 0.4}, {"analyzing", 0.6}, {"translating", 0.8}};
    for (const auto& [status, progress] : stages)
        EXPECT_EQ(poll(jobId).tree(), (json{{"status", status}, {"progress", progress}}));
    const json last = poll(jobId).tree();
    EXPECT_EQ(last.at("status"), "complete");
    EXPECT_EQ(last.at("progress"), 1.0);
    EXPECT_EQ(poll(jobId).tree(), last);
    std::string said;
    for (const auto& file : trueWords(StandIn::defaultSampleFolder()))
        for (const TrueWord& word : file)
            said += word.word + " ";
    const json& result = last.at("result");
    ASSERT_GE(result.at("segments").size(), 2U);
    for (const json& segment : result.at("segments")) {
        EXPECT_EQ(segment.size(), 7U);
        EXPECT_THAT(said, HasSubstr(segment.at("transcript").get<std::string>()));
        EXPECT_EQ(segment.at("translation"), segment.at("transcript"));
        EXPECT_LT(segment.at("startTime").get<double>(), segment.at("endTime").get<double>());
    }
    EXPECT_TRUE(result.at("structure").at("acts").is_array());
    EXPECT_GT(result.at("structure").at("totalDuration").get<double>(), 16.0); // two passages of at least 8 s
    EXPECT_GE(result.at("subtitles").size(), 2U);
    EXPECT_TRUE(result.at("estimatedDuration").is_number());
}

TEST_F(AccountOverSockets, aFileThatIsNoSoundEndsInAnError) {
    const std::string jobId = startJob("no sound");
    for (int polls = 0; polls < 3; ++polls)
        EXPECT_EQ(poll(jobId).status, 200);
    const json last = poll(jobId).tree();
    EXPECT_EQ(last.at("status"), "error");
    EXPECT_FALSE(last.contains("result"));
}

TEST_F(AccountOverSockets, theStagesAndTheResultCanBeSet) {
    m_standIn.jobs().setStatuses({{"dreaming", 0.5}, {"complete", 0.9, true}});
    m_standIn.jobs().setResult({{"anything", 1}});
    const std::string jobId = startJob("no sound");
    EXPECT_EQ(poll(jobId).tree(), json::parse(R"({"status":"dreaming","progress":0.5})"));
    EXPECT_EQ(poll(jobId).tree(), json::parse(R"({"status":"complete","progress":0.9,"result":{"anything":1}})"));
}

TEST_F(AccountOverSockets, aJobCanBeCompleteWithoutAResult) {
    m_standIn.jobs().setStatuses({{"complete", 1.0}});
    EXPECT_EQ(poll(startJob("no sound")).tree(), json::parse(R"({"status":"complete","progress":1.0})"));
}

TEST_F(AccountOverSockets, aPollThatFailsIsNoStage) {
    const std::string jobId = startJob("no sound");
    m_standIn.fail(Service::jobs, Failure::status(502), Occasion::only(2));
    EXPECT_EQ(poll(jobId).tree().at("status"), "transcribing");
    EXPECT_EQ(poll(jobId).status, 502);
    EXPECT_EQ(poll(jobId).tree().at("status"), "analyzing");
}

TEST_F(AccountOverSockets, aJobThatWasNotStartedIsQueued) {
    const std::string jobId = upload("x").tree().at("jobId");
    EXPECT_EQ(poll(jobId).tree(), json::parse(R"({"status":"queued","progress":0.0})"));
}

TEST_F(AccountOverSockets, everyUploadIsAJobOfItsOwn) {
    const std::string first = startJob("x");
    const std::string second = startJob("x");
    EXPECT_NE(first, second);
    EXPECT_EQ(poll(first).tree().at("status"), "transcribing");
    EXPECT_EQ(poll(first).tree().at("status"), "analyzing");
    EXPECT_EQ(poll(second).tree().at("status"), "transcribing");
}

TEST_F(AccountOverSockets, aJobNobodyUploadedIsUnknown) {
    for (const char* jobId : {"job-1", "", "../me", "%00"})
        EXPECT_EQ(poll(jobId).status, 404) << jobId;
    EXPECT_EQ(process("job-1").status, 404);
}

TEST_F(AccountOverSockets, jobsNeedAToken) {
    EXPECT_EQ(upload("x", {}).status, 401);
    EXPECT_EQ(send("POST", QStringLiteral("/api/v1/api/v1/process"), "{}", "Bearer other").status, 401);
    EXPECT_EQ(get(QStringLiteral("/api/v1/api/v1/jobs/job-1"), {}).status, 401);
}

TEST_F(AccountOverSockets, aRequestOfAnotherShapeIsABadOne) {
    const QString uploadPath = QStringLiteral("/api/v1/api/v1/upload");
    EXPECT_EQ(send("POST", uploadPath, "no form").status, 400);
    EXPECT_EQ(send("POST", uploadPath,
                   "--edge\r\nContent-Disposition: form-data; name=\"other\"\r\n\r\nx\r\n--edge--\r\n",
                   "Bearer zuvo_abc", "multipart/form-data; boundary=edge")
                  .status,
              400);
    const std::string jobId = upload("x").tree().at("jobId");
    EXPECT_EQ(process(jobId, "full-mine").status, 400);
    for (const char* body : {"", "[]", "{}", R"({"jobId":1,"mode":"Full Mine"})", R"({"jobId":"job-1"})"})
        EXPECT_EQ(send("POST", QStringLiteral("/api/v1/api/v1/process"), body).status, 400) << body;
    for (const char* mode : {"Full Mine", "Story Mine", "Structure", "Audit Mine"})
        EXPECT_EQ(process(jobId, mode).status, 200) << mode;
}

TEST_F(AccountOverSockets, anotherMethodIsNotAllowed) {
    EXPECT_EQ(send("POST", QStringLiteral("/api/v1/me"), "{}").status, 405);
    EXPECT_EQ(send("DELETE", QStringLiteral("/api/v1/version")).status, 405);
    EXPECT_EQ(get(QStringLiteral("/api/v1/api/v1/upload")).status, 405);
    EXPECT_EQ(send("POST", QStringLiteral("/billing")).status, 405);
}

TEST_F(AccountOverSockets, onePartOfTheAccountFailsAndTheOthersDoNot) {
    m_standIn.fail(Service::version, Failure::status(500));
    m_standIn.fail(Service::me, Failure::status(401, "who are you"), Occasion::next(1));
    EXPECT_EQ(me().body, "who are you");
    EXPECT_EQ(me().status, 200);
    const Reply reply = version();
    EXPECT_EQ(reply.status, 500);
    EXPECT_TRUE(reply.tree().at("error").is_string());
}

TEST_F(AccountOverSockets, keepsWhatItWasSentPartByPart) {
    me("Bearer zuvo_x");
    poll("job-9");
    upload("the sound");
    get(QStringLiteral("/plugin-auth?callback=x"));
    ASSERT_EQ(m_standIn.requests().size(), 4U);
    ASSERT_EQ(m_standIn.requests(Service::me).size(), 1U);
    EXPECT_EQ(m_standIn.requests(Service::me)[0].method, "GET");
    EXPECT_EQ(m_standIn.requests(Service::me)[0].header("Authorization"), "Bearer zuvo_x");
    ASSERT_EQ(m_standIn.requests(Service::jobs).size(), 1U);
    EXPECT_EQ(m_standIn.requests(Service::jobs)[0].path, "/api/v1/api/v1/jobs/job-9");
    ASSERT_EQ(m_standIn.requests(Service::upload).size(), 1U);
    EXPECT_THAT(m_standIn.requests(Service::upload)[0].body, HasSubstr("the sound"));
    ASSERT_EQ(m_standIn.requests(Service::page).size(), 1U);
    EXPECT_EQ(m_standIn.requests(Service::page)[0].path, "/plugin-auth?callback=x");
}

} // namespace
