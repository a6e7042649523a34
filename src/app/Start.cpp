#include "app/Start.h"

namespace zuvo {

StartArguments parseStartArguments(const QStringList& arguments) {
    StartArguments start;
    if (arguments.isEmpty())
        return start;
    if (arguments.size() > 1 || !arguments.constFirst().startsWith(QLatin1String("zuvo-manager:"))) {
        // The argument is not shown: it may be a mistyped link with a token.
        start.refusal = QStringLiteral("ZuvoManager takes no argument but a zuvo-manager: link; "
                                       "zuvo --help tells about the program without a window");
        return start;
    }
    start.url = arguments.constFirst().toStdString();
    return start;
}

} // namespace zuvo
