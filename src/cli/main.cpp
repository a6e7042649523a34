#include "cli/Commands.h"
#include "platform/ChildEnvironment.h"
#include "platform/CoreDumps.h"
#include "platform/StandardStreams.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    zuvo::withstandBrokenStreams();
    zuvo::turnOffCoreDumps(zuvo::Inspection::nobody);
    zuvo::withdrawKeys();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zuvo"));
    auto command = zuvo::parseArguments(QCoreApplication::arguments().mid(1));
    return static_cast<int>(zuvo::carryOut(std::move(command), zuvo::Platform::ofThisMachine()));
}
