#include <time.h>
#include <unistd.h>
#include <uuid/uuid.h>

#include <iterator>

#include "platform/instance/this_machine.h"

namespace tallowcrest {

// Not its name there, which follows the network.
std::string thisMachine() {
    uuid_t identity{};
    constexpr timespec patience{.tv_sec = 1, .tv_nsec = 0};
    return ::gethostuuid(identity, &patience) == 0
               ? std::string(std::begin(identity), std::end(identity))
               : "";
}

}  // namespace tallowcrest
