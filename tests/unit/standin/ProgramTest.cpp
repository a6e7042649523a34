#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTcpSocket>
#include <csignal>
#include <gmock/gmock.h>

namespace {

constexpr int patience = 30000; // milliseconds

class Program : public testing::Test {
protected:
    void start(const QStringList& arguments) {
        m_process.start(QStringLiteral(ZUVO_STANDIN_PROGRAM), arguments);
        ASSERT_TRUE(m_process.waitForStarted(patience));
    }

    /// Starts it and reads the three lines it prints when it is ready.
    void startReady(const QStringList& arguments) {
        start(arguments);
        while (m_printed.count('\n') < 3) {
            ASSERT_TRUE(m_process.waitForReadyRead(patience)) << m_process.readAllStandardError().toStdString();
            m_printed += m_process.readAllStandardOutput();
        }
    }

    [[nodiscard]] quint16 port() const {
        const QRegularExpression lines(QStringLiteral("^OPENAI_BASE_URL=http://127\\.0\\.0\\.1:(\\d+)/v1\n"
                                                      "ANTHROPIC_BASE_URL=http://127\\.0\\.0\\.1:\\1\n"
                                                      "ZUVO_SERVICE_URL=http://127\\.0\\.0\\.1:\\1\n$"));
        return lines.match(QString::fromUtf8(m_printed)).captured(1).toUShort();
    }

    /// What comes back for a bare request, up to the end of the head.
    [[nodiscard]] QByteArray ask(const QByteArray& what = "POST /v1/messages") const {
        QTcpSocket socket;
        socket.connectToHost(QStringLiteral("127.0.0.1"), port());
        EXPECT_TRUE(socket.waitForConnected(patience));
        socket.write(what + " HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n");
        QByteArray answer;
        while (!answer.contains("\r\n\r\n") && socket.waitForReadyRead(patience))
            answer += socket.readAll();
        return answer;
    }

    /// Exit status, or -1 if it did not end by itself.
    int finish() {
        if (!m_process.waitForFinished(patience) || m_process.exitStatus() != QProcess::NormalExit)
            return -1;
        return m_process.exitCode();
    }

    QProcess m_process;
    QByteArray m_printed;
};

TEST_F(Program, printsItsThreeAddressesAndAnswersThere) {
    ASSERT_NO_FATAL_FAILURE(startReady({}));
    ASSERT_NE(port(), 0) << m_printed.toStdString();
    EXPECT_TRUE(ask().startsWith("HTTP/1.1 401 "));
    EXPECT_TRUE(ask("GET /api/v1/version").startsWith("HTTP/1.1 200 "));
    m_process.terminate();
    EXPECT_EQ(finish(), 0);
}

TEST_F(Program, failsAsTold) {
    ASSERT_NO_FATAL_FAILURE(startReady({QStringLiteral("--fail"), QStringLiteral("messages:status=503,after=1"),
                                        QStringLiteral("--fail"), QStringLiteral("transcription:drop"),
                                        QStringLiteral("--fail"), QStringLiteral("version:status=500")}));
    EXPECT_TRUE(ask("GET /api/v1/version").startsWith("HTTP/1.1 500 "));
    EXPECT_TRUE(ask().startsWith("HTTP/1.1 401 "));
    EXPECT_TRUE(ask().startsWith("HTTP/1.1 503 "));
    m_process.terminate();
    EXPECT_EQ(finish(), 0);
}

TEST_F(Program, endsWellWhenInterrupted) {
    ASSERT_NO_FATAL_FAILURE(startReady({}));
    ASSERT_EQ(kill(static_cast<pid_t>(m_process.processId()), SIGINT), 0);
    EXPECT_EQ(finish(), 0);
}

TEST_F(Program, aTakenPortIsAFailureWithAMessage) {
    ASSERT_NO_FATAL_FAILURE(startReady({}));
    QProcess second;
    second.start(QStringLiteral(ZUVO_STANDIN_PROGRAM), {QStringLiteral("--port"), QString::number(port())});
    ASSERT_TRUE(second.waitForFinished(patience));
    EXPECT_EQ(second.exitCode(), 1);
    EXPECT_THAT(second.readAllStandardError().toStdString(), testing::HasSubstr("is taken"));
    m_process.terminate();
    EXPECT_EQ(finish(), 0);
}

TEST_F(Program, wrongUsageEndsWithTwoAndSaysWhy) {
    const std::vector<QStringList> wrong{{QStringLiteral("--fail"), QStringLiteral("messages:explode")},
                                         {QStringLiteral("--port"), QStringLiteral("many")},
                                         {QStringLiteral("--sample"), QStringLiteral("/no/such/folder")},
                                         {QStringLiteral("--loud")},
                                         {QStringLiteral("argument")}};
    for (const QStringList& arguments : wrong) {
        start(arguments);
        EXPECT_EQ(finish(), 2) << arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(m_process.readAllStandardError().startsWith("zuvo-standin: "));
    }
}

TEST_F(Program, aCommandGetsTheAddressesAndMadeUpKeysAndItsStatusIsTheStandIns) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ANTHROPIC_API_KEY"), QStringLiteral("the-callers-own"));
    m_process.setProcessEnvironment(environment);
    start({QStringLiteral("--"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
           QStringLiteral(
               "echo OPENAI_BASE_URL=$OPENAI_BASE_URL; echo ANTHROPIC_BASE_URL=$ANTHROPIC_BASE_URL;"
               "echo ZUVO_SERVICE_URL=$ZUVO_SERVICE_URL; echo $OPENAI_API_KEY $ANTHROPIC_API_KEY >&2; exit 7")});
    EXPECT_EQ(finish(), 7);
    m_printed = m_process.readAllStandardOutput();
    EXPECT_NE(port(), 0) << m_printed.toStdString();
    EXPECT_EQ(m_process.readAllStandardError().toStdString(), "made-up-key made-up-key\n");
}

TEST_F(Program, aCommandIsAnsweredWhileItRuns) {
    start({QStringLiteral("--"), QStringLiteral("/usr/bin/python3"), QStringLiteral("-c"),
           QStringLiteral("import os, urllib.request\n"
                          "print(urllib.request.urlopen(os.environ['ZUVO_SERVICE_URL'] + '/api/v1/version').status)")});
    EXPECT_EQ(finish(), 0);
    EXPECT_EQ(m_process.readAllStandardOutput().toStdString(), "200\n");
}

TEST_F(Program, aCommandThatIsNotThereIsToldAndEndsLikeAShell) {
    start({QStringLiteral("--"), QStringLiteral("/no/such/program")});
    EXPECT_EQ(finish(), 127);
    EXPECT_TRUE(m_process.readAllStandardError().startsWith("zuvo-standin: /no/such/program: "));
}

TEST_F(Program, aWishToEndIsPassedOnToTheCommand) {
    start({QStringLiteral("--"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
           QStringLiteral("trap 'echo ended; exit 9' TERM; echo ready; while :; do sleep 0.1; done")});
    while (!m_printed.contains("ready")) {
        ASSERT_TRUE(m_process.waitForReadyRead(patience));
        m_printed += m_process.readAllStandardOutput();
    }
    m_process.terminate();
    EXPECT_EQ(finish(), 9);
    EXPECT_EQ((m_printed + m_process.readAllStandardOutput()).toStdString(), "ready\nended\n");
}

TEST_F(Program, aCtrlCOfTheTerminalIsTheCommandsToAnswer) {
    start({QStringLiteral("--"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
           QStringLiteral("echo ready; read line; exit 4")});
    while (!m_printed.contains("ready")) {
        ASSERT_TRUE(m_process.waitForReadyRead(patience));
        m_printed += m_process.readAllStandardOutput();
    }
    ASSERT_EQ(kill(static_cast<pid_t>(m_process.processId()), SIGINT), 0);
    m_process.write("on\n");
    EXPECT_EQ(finish(), 4);
}

TEST_F(Program, helpSaysHowToFail) {
    start({QStringLiteral("--help")});
    EXPECT_EQ(finish(), 0);
    EXPECT_THAT(m_process.readAllStandardOutput().toStdString(), testing::HasSubstr("--fail"));
}

} // namespace
