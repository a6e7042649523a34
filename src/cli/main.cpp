#include "cli/Commands.h"
#include "platform/StandardStreams.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    zuvo::withstandBrokenStreams();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zuvo"));
    auto command = zuvo::parseArguments(QCoreApplication::arguments().mid(1));
    return static_cast<int>(zuvo::carryOut(std::move(command), zuvo::Platform::ofThisMachine()));
}
