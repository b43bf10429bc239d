#include "platform/base/environment_lock.h"

namespace tallowcrest {

std::mutex& environmentLock() {
    static std::mutex lock;
    return lock;
}

}  // namespace tallowcrest
