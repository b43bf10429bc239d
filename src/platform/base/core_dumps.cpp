#include "platform/base/core_dumps.h"

#include <sys/resource.h>

#include <algorithm>

namespace tallowcrest {

void forbidCoreDumps() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_CORE, &limit) == 0) {
        // Linux ignores a limit of 0 when it passes dumps to a program. At 1 it makes none at all,
        // and no file is that small either.
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 1);
        ::setrlimit(RLIMIT_CORE, &limit);
    }
}

}  // namespace tallowcrest
