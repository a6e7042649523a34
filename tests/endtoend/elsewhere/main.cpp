// zuvo as it would be on another machine. Everything is the real program's but two facts that no program can be told
// from outside, and that a developer's machine must not leak into a test:
//
//     ZUVO_ELSEWHERE_TOOLS   folder under which the tools' fixed places lie, such as {folder}/usr/bin/ffmpeg
//     HOME                   is also the home folder of the user database, under which keys are looked for

#include "cli/Commands.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zuvo"));
    auto platform = zuvo::Platform::ofThisMachine();
    auto& environment = platform.environment;
    environment.realHomeDir = environment.home;
    const auto root = environment.variable("ZUVO_ELSEWHERE_TOOLS").value_or("");
    environment.tools = {zuvo::fixedToolPath("ffmpeg", root), zuvo::fixedToolPath("ffprobe", root),
                         zuvo::fixedToolPath("python3", root)};
    auto command = zuvo::parseArguments(QCoreApplication::arguments().mid(1));
    return static_cast<int>(zuvo::carryOut(std::move(command), platform));
}
