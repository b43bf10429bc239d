#include "platform/base/allocator.h"

#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace tallowcrest {

void useOneArena() {
#if defined(__GLIBC__)
    ::mallopt(M_ARENA_MAX, 1);
#endif
}

}  // namespace tallowcrest
