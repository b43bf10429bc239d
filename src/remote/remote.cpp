#include "remote/remote.h"

#include "core/services.h"

namespace tallowcrest {

Remote::Remote(const Services& services, const RemotePorts& ports)
    : tools(ports.allowed, ports.launcher, services.jobs, services.log), tailnet(services) {}

}  // namespace tallowcrest
