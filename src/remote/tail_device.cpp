#include "remote/tail_device.h"

#include "core/locale.h"

namespace tallowcrest {

bool hasPath(const TailDevice& device) {
    return device.inMagicSock || !device.currentAddress.empty() || !device.relay.empty();
}

bool isRemoteMac(const TailDevice& device, const Locale& locale) {
    return device.online && locale.containsIgnoringCase(device.os, "mac");
}

bool isRemoteLinux(const TailDevice& device, const Locale& locale) {
    return device.online && locale.containsIgnoringCase(device.os, "linux");
}

}  // namespace tallowcrest
