#include "standin/GuidedCommand.h"
#include "standin/StandIn.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <array>
#include <csignal>
#include <cstdio>
#include <functional>
#include <sys/socket.h>
#include <unistd.h>

namespace {

std::array<int, 2> signalSockets{-1, -1};

/// A signal handler may do little more than write: the event loop reads the other end and quits.
extern "C" void noteSignal(int signal) {
    const auto byte = static_cast<char>(signal);
    const ssize_t written = write(signalSockets[0], &byte, sizeof byte);
    static_cast<void>(written); // a full socket already holds a byte that ends the program
}

/// Has the event loop call `answer` with each SIGINT and SIGTERM.
bool listenForSignals(QCoreApplication& application, std::function<void(int)> answer) {
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, signalSockets.data()) != 0)
        return false;
    auto* notifier = new QSocketNotifier(signalSockets[1], QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [answer = std::move(answer)] {
        char signal = 0;
        while (read(signalSockets[1], &signal, sizeof signal) == sizeof signal)
            answer(signal);
    });
    return std::signal(SIGINT, noteSignal) != SIG_ERR && std::signal(SIGTERM, noteSignal) != SIG_ERR;
}

constexpr const char* description =
    "Plays the transcription, messages and account services on 127.0.0.1, for trying the program out and for tests.\n"
    "Prints three lines that a shell can read, OPENAI_BASE_URL=..., ANTHROPIC_BASE_URL=... and ZUVO_SERVICE_URL=...,\n"
    "once it is ready. With a COMMAND it prints nothing, gives the command these variables and made-up keys, and ends\n"
    "with it and with its exit status:  zuvo-standin -- zuvo mine FILE...\n"
    "\n"
    "A failure is SERVICE:KIND[,OPTION...] with SERVICE one of\n"
    "  transcription  messages\n"
    "  me  version  upload  process  jobs  archive  page (the account's)\n"
    "and KIND one of\n"
    "  status=N  unauthorized  redirect=URL  notjson  shape  truncated  drop  cut  stall  delay=MS\n"
    "  body=TEXT  reply=TEXT (messages alone)\n"
    "and OPTION one of\n"
    "  after=N (so many requests are answered well first)  count=N (so many fail then)  delay=MS\n"
    "  body=TEXT (with status). TEXT runs to the end, so it comes last.";

[[noreturn]] void refuse(const QString& message) {
    std::fprintf(stderr, "zuvo-standin: %s\n", qPrintable(message));
    std::exit(2);
}

void orderFailures(zuvo::standin::StandIn& standIn, const QStringList& texts) {
    for (const QString& text : texts) {
        const auto order = zuvo::standin::parseFailureOrder(text.toStdString());
        if (!order)
            refuse(QStringLiteral("\"%1\" is no failure; --help tells how to write one").arg(text));
        standIn.fail(order->service, order->failure, order->occasion);
    }
}

/// Says where it listens, and does until a signal comes.
int serve(QCoreApplication& application, const zuvo::standin::StandIn& standIn) {
    if (!listenForSignals(application, [](int) { QCoreApplication::quit(); }))
        refuse(QStringLiteral("cannot listen for signals"));
    std::printf("OPENAI_BASE_URL=%s\nANTHROPIC_BASE_URL=%s\nZUVO_SERVICE_URL=%s\n",
                qPrintable(standIn.transcriptionBase()), qPrintable(standIn.messagesBase()),
                qPrintable(standIn.accountBase()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}

int serveCommand(QCoreApplication& application, const zuvo::standin::StandIn& standIn, const QStringList& words) {
    zuvo::standin::GuidedCommand command(standIn, words);
    if (!listenForSignals(application, [&command](int signal) { command.passOn(signal); }))
        refuse(QStringLiteral("cannot listen for signals"));
    // Queued: a program that cannot be started says so before the event loop turns.
    QObject::connect(&command, &zuvo::standin::GuidedCommand::ended, &application, &QCoreApplication::exit,
                     Qt::QueuedConnection);
    command.start();
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zuvo-standin"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8(description));
    parser.addHelpOption();
    const QCommandLineOption portOption(QStringLiteral("port"),
                                        QStringLiteral("Listen on port N; a free one if left out."),
                                        QStringLiteral("N"), QStringLiteral("0"));
    const QCommandLineOption failOption(
        QStringLiteral("fail"), QStringLiteral("Fail as told; can be given repeatedly."), QStringLiteral("FAILURE"));
    const QCommandLineOption sampleOption(QStringLiteral("sample"), QStringLiteral("The sample interview's folder."),
                                          QStringLiteral("DIR"), zuvo::standin::StandIn::defaultSampleFolder());
    parser.addOptions({portOption, failOption, sampleOption});
    parser.addPositionalArgument(QStringLiteral("COMMAND"), QStringLiteral("Run this against the stand-in."),
                                 QStringLiteral("[-- COMMAND...]"));
    if (!parser.parse(QCoreApplication::arguments()))
        refuse(parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();
    const auto command = parser.positionalArguments();
    if (!command.isEmpty() && !QCoreApplication::arguments().contains(QStringLiteral("--")))
        refuse(QStringLiteral("unexpected argument \"%1\"; a command stands behind --").arg(command.constFirst()));

    bool isNumber = false;
    const quint16 port = parser.value(portOption).toUShort(&isNumber);
    if (!isNumber)
        refuse(QStringLiteral("\"%1\" is no port").arg(parser.value(portOption)));
    zuvo::standin::StandIn standIn(parser.value(sampleOption));
    if (!standIn.knowsSample())
        refuse(QStringLiteral("no readable transcript.json in %1").arg(parser.value(sampleOption)));
    orderFailures(standIn, parser.values(failOption));
    // Nobody asks this program what it was sent.
    QObject::connect(&standIn, &zuvo::standin::StandIn::requestArrived, &standIn,
                     &zuvo::standin::StandIn::forgetRequests);
    if (!standIn.listen(port)) {
        std::fprintf(stderr, "zuvo-standin: port %d is taken\n", int{port});
        return 1;
    }
    return command.isEmpty() ? serve(application, standIn) : serveCommand(application, standIn, command);
}
