#include "platform/CoreDumps.h"

#include <sys/resource.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace zuvo {

namespace {

/// Bytes of the largest core file. A limit of 0 stops a file, but no reporter that the kernel pipes the dump to; Linux
/// takes 1 for a process whose dump must not be made at all, and no core file is that small.
rlim_t dumpLimit(Inspection inspection) {
#ifdef __linux__
    return inspection == Inspection::desktopPortals ? 1 : 0;
#else
    static_cast<void>(inspection);
    return 0;
#endif
}

} // namespace

void turnOffCoreDumps(Inspection inspection) {
    rlimit limit{};
    if (::getrlimit(RLIMIT_CORE, &limit) == 0) {
        const auto wanted = dumpLimit(inspection);
        limit.rlim_cur = wanted < limit.rlim_max ? wanted : limit.rlim_max;
        (void)::setrlimit(RLIMIT_CORE, &limit);
    }
#ifdef __linux__
    // The stronger means: no other program of this user's can read the memory either.
    if (inspection == Inspection::nobody)
        (void)::prctl(PR_SET_DUMPABLE, 0);
#endif
}

} // namespace zuvo
