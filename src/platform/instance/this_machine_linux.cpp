#include <sys/utsname.h>

#include "platform/instance/this_machine.h"

namespace tallowcrest {

std::string thisMachine() {
    utsname system{};
    return ::uname(&system) == 0 ? &system.nodename[0] : "";
}

}  // namespace tallowcrest
